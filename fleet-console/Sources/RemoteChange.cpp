#include "RemoteChange.h"

#include "BrokerReader.h"
#include "CommandSending.h"
#include "Commands/Arguments.h"
#include "Fleet/CommandExchange.h"
#include "Inventory/DeviceTable.h"
#include "Question.h"
#include "Show/Output.h"
#include "Text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

using Zent::Discovery::Console::Arguments;
using Zent::Discovery::Console::Output;
using Zent::Discovery::Console::TerminalText;
using Zent::Discovery::Fleet::Command;
using Zent::Discovery::Fleet::CommandExchange;
using Zent::Discovery::Fleet::SiteReading;
using Zent::Discovery::Fleet::SiteState;
using Zent::Discovery::Fleet::Verdict;
using Zent::Discovery::Inventory::ChangeChecks;
using Zent::Discovery::Inventory::ChangeRefusal;
using Zent::Discovery::Inventory::ChangeReport;
using Zent::Discovery::Inventory::ChangeRequest;
using Zent::Discovery::Inventory::DeviceRow;
using Json = nlohmann::ordered_json;

namespace Zent::Discovery::FleetConsole
{
namespace
{
using Code = ChangeRefusal::RefusalCode;

Verdict NotSent(const ChangeRefusal& refusal)
{
    return {CommandExchange::NotSent, refusal.CodeName(), refusal.Text};
}

/// As the console tells of a change: what the agent says of it, or what is known of it here.
std::string JsonOf(const ChangeReport& report, const Verdict& verdict)
{
    Json document = Json::object({{"MACAddress", report.Subject()}, {"Verdict", verdict.Name}});
    if (const Json details = Json::parse(verdict.Details, nullptr, false); details.is_object())
    {
        document.update(details);
        document["Verdict"] = verdict.Name;
    }
    else
    {
        document["Code"] = verdict.Code.empty() ? verdict.Name : verdict.Code;
        document["Text"] = verdict.Text;
    }
    return document.dump(-1, ' ', false, Json::error_handler_t::replace);
}
} // namespace

void RemoteChange::Settings::AddTo(Arguments& arguments)
{
    arguments.AddFlag("--yes", Yes, "ask nothing: yes is the answer");
    arguments.AddFlag("--force", Force,
                      "send it though the records are against it, or the site is not ready; ask nothing");
    arguments.AddFlag("--dry-run", DryRun, "show what would be sent and what it would change; send nothing");
    arguments.AddSeconds("--timeout", Timeout,
                         "how long to wait for the verdict; as long as it can take without it, which is 100", 1.0);
}

RemoteChange::RemoteChange(CommandContext& context, const Settings& settings)
    : context(context)
    , settings(settings)
    , site(CommandSending::SiteOf(context))
    , reading({site}, SiteReading::ReadingScope::Devices, records)
{
}

bool RemoteChange::Look()
{
    context.Out.ShowStatus("Reading the records of site " + site);
    BrokerReader::Read(context, reading);
    for (const std::string& text : reading.Shortfalls())
    {
        context.Out.Complain(text);
    }
    devices.emplace(records.Of(site));
    return !context.Waiter.IsInterrupted();
}

ExitStatus RemoteChange::CarryOut(const std::vector<ChangeRequest>& requests)
{
    Reports reports;
    for (const ChangeRequest& each : requests)
    {
        reports.push_back({.Id = 0, .Request = each});
    }
    if (const std::optional<Verdicts> refused = Check(reports))
    {
        Tell(reports, *refused);
        return ExitStatus::Usage;
    }
    if (settings.DryRun)
    {
        for (const ChangeReport& each : reports)
        {
            if (context.Out.IsJson())
            {
                context.Out.PrintLine(R"({"Change":)" +
                                      TerminalText::Json(JsonOf(each, NotSent({Code::DryRun, each.PlanText()}))) + "}");
            }
            else
            {
                context.Out.PrintLine(TerminalText::Plain(each.PlanText()));
            }
        }
        return ExitStatus::Success;
    }
    if (const ExitStatus answer = Ask(reports); answer != ExitStatus::Success)
    {
        return answer;
    }
    const std::vector<std::optional<Verdict>> replies =
        CommandSending::Send(context, CommandsFor(reports), settings.Timeout,
                             "Waiting for the agent of site " + site + " to carry it out and to see whether it has");
    Verdicts verdicts;
    for (const std::optional<Verdict>& each : replies)
    {
        verdicts.push_back(each.value_or(
            Verdict{CommandExchange::NoReply, "", "no reply has come, and nobody knows whether it was carried out"}));
    }
    Tell(reports, verdicts);
    return context.Waiter.IsInterrupted() ? ExitStatus::Interrupted : CommandSending::StatusOf(verdicts, "applied");
}

/// Notes what the devices have. The verdicts when something must not be sent; then nothing is.
std::optional<RemoteChange::Verdicts> RemoteChange::Check(Reports& reports) const
{
    const SiteReading& read = reading.Sites().front();
    const bool isReady = read.State() && read.State()->Kind == SiteState::StateKind::Ready;
    std::vector<ChangeRequest> others;
    std::vector<std::optional<Verdict>> found;
    for (ChangeReport& report : reports)
    {
        if (const DeviceRow* const row = report.Request.TargetIn(devices->Table()))
        {
            report.Before = row->Latest;
        }
        std::optional<ChangeRefusal> refusal =
            ChangeChecks::Find(report.Request, {.Force = settings.Force}, devices->Table(), others);
        if (!refusal && !devices->Find(report.Request.Interface.MACAddress)) // even the agent cannot be forced then
        {
            refusal = {Code::UnknownDevice, "site " + site + " has no record of " + report.Subject()};
        }
        if (!refusal && !isReady && !settings.Force)
        {
            found.push_back(Verdict{CommandExchange::NotSent, CommandExchange::NoAgent,
                                    "site " + site + " is " + read.StateName() + ": nobody would carry it out"});
        }
        else
        {
            found.push_back(refusal ? std::optional(NotSent(*refusal)) : std::nullopt);
        }
        others.push_back(report.Request);
    }
    if (std::ranges::none_of(found, &std::optional<Verdict>::has_value))
    {
        return std::nullopt;
    }
    Verdicts verdicts;
    for (std::size_t i = 0; i < found.size(); ++i)
    {
        verdicts.push_back(
            found[i].value_or(NotSent({Code::LeftOut, reports[i].Subject() + ": another change is refused"})));
    }
    return verdicts;
}

/// Success when the user agrees, or need not be asked.
ExitStatus RemoteChange::Ask(const Reports& reports)
{
    if (reports.size() < 2 || settings.Yes || settings.Force)
    {
        return ExitStatus::Success;
    }
    std::string question;
    for (const ChangeReport& each : reports)
    {
        question += TerminalText::Plain(each.PlanText()) + "\n";
    }
    const Question::Reply reply = Question::Ask(context, question + "Send this?");
    if (reply == Question::Reply::Yes || reply == Question::Reply::Nobody)
    {
        return ExitStatus::Success;
    }
    context.Out.Complain("nothing was sent");
    return reply == Question::Reply::No ? ExitStatus::Usage : ExitStatus::Interrupted;
}

std::vector<Command> RemoteChange::CommandsFor(const Reports& reports) const
{
    std::vector<Command> commands;
    for (const ChangeReport& each : reports)
    {
        const ChangeRequest& request = each.Request;
        const std::optional<SiteDevices::Entry> entry = devices->Find(request.Interface.MACAddress);
        const bool isNaming = request.Kind == ChangeRequest::ChangeKind::Rename;
        Command& command = commands.emplace_back();
        command.Kind = isNaming ? Command::CommandKind::Rename : Command::CommandKind::Configure;
        command.Device = entry->Id;
        command.Revision = entry->Revision;
        command.HostName = request.HostName;
        command.Settings = isNaming ? "" : request.ToJson();
    }
    return commands;
}

void RemoteChange::Tell(const Reports& reports, const Verdicts& verdicts) const
{
    Output& output = context.Out;
    for (std::size_t i = 0; i < reports.size(); ++i)
    {
        const Verdict& verdict = verdicts[i];
        if (output.IsJson())
        {
            output.PrintLine(R"({"Change":)" + TerminalText::Json(JsonOf(reports[i], verdict)) + "}");
        }
        if (verdict.Name == "applied")
        {
            output.Conclude(TerminalText::Plain(CommandSending::SentenceOf(verdict)));
        }
        else
        {
            output.Complain(CommandSending::SentenceOf(verdict));
        }
    }
}
} // namespace Zent::Discovery::FleetConsole
