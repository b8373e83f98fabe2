#include "Inventory/ChangeReport.h"

#include "JsonText.h"

namespace Zent::Discovery::Inventory
{
namespace
{
using Verdict = ChangeReport::ChangeVerdict;
} // namespace

std::string ChangeReport::MACAddress() const
{
    const Device::Interface& interface = Request.Interface;
    const Device* const device = After ? After.get() : Before.get();
    if (!interface.MACAddress.empty() || device == nullptr)
    {
        return interface.MACAddress;
    }
    for (const Device::Interface& each : device->Interfaces())
    {
        if (each.IPAddress == interface.IPAddress)
        {
            return each.MACAddress;
        }
    }
    return {};
}

std::string ChangeReport::Subject() const
{
    const std::string address = MACAddress();
    return address.empty() ? Request.Interface.IPAddress : address;
}

const char* ChangeReport::VerdictName() const
{
    static constexpr const char* Names[] = {"applied", "reboot-needed", "refused", "no-answer", "not-sent"};
    return Verdict ? Names[static_cast<std::size_t>(*Verdict)] : "";
}

std::optional<ChangeRequest> ChangeReport::Undo() const
{
    if (Before == nullptr || Refusal)
    {
        return std::nullopt;
    }
    if (Request.Kind != ChangeRequest::ChangeKind::Configure)
    {
        return ChangeRequest{Request.Kind, Before->HostName, Request.Interface};
    }
    const Device::Interface* const interface = Before->FindMAC(Request.Interface.MACAddress);
    return interface == nullptr ? std::nullopt : std::optional(ChangeRequest::Configure(*interface));
}

std::string ChangeReport::PlanText() const
{
    const std::string name = Before == nullptr ? "" : " (" + Before->HostName + ")";
    const std::optional<ChangeRequest> before = Undo();
    return Subject() + name + ": " + Request.ToString() + (before ? " instead of " + before->ToString() : "");
}

std::string ChangeReport::ToJson() const
{
    JsonText json;
    json.Text(MACAddress().empty() ? "IPAddress" : "MACAddress", Subject());
    if (Verdict)
    {
        json.Text("Verdict", VerdictName());
    }
    if (Refusal)
    {
        json.Text("Code", Refusal->CodeName()).Text("Text", Refusal->Text);
    }
    else
    {
        json.Raw("Seconds", JsonText::OneDecimal(static_cast<double>(Elapsed.count()) / 1000));
    }
    if (Before != nullptr)
    {
        json.Raw("Before", Request.SettingsOf(*Before));
    }
    if (After != nullptr)
    {
        json.Raw("After", Request.SettingsOf(*After));
    }
    return json.Take();
}

std::string ChangeReport::ToString() const
{
    if (Refusal)
    {
        return Refusal->ToString();
    }
    const std::string who = Subject();
    const std::string what = Request.ToString();
    const std::string verdict = std::string(" (") + VerdictName() + ")";
    switch (Verdict.value_or(Verdict::Applied))
    {
    case Verdict::RebootNeeded:
        return who + " takes " + what + " when it starts anew" + verdict;
    case Verdict::Refused:
        return who + " has not taken " + what + verdict;
    case Verdict::NoAnswer:
        return who + " was given " + what + " and has not answered since" + verdict;
    default:
        return who + (Verdict ? " has taken " + what + verdict : " is given " + what);
    }
}
} // namespace Zent::Discovery::Inventory
