#include "SimulatedDevice.h"

#include "Discovery/Message/AllSendYourSignatureMessage.h"
#include "Discovery/Message/SendYourSignatureMessage.h"

#include <algorithm>
#include <utility>

using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::Net::IPAddress;

namespace Zent::Discovery::Simulator
{
namespace
{
void TakeSettings(DiscoveryHost& host, const ChangeYourIPConfigMessage& message)
{
    for (const SmartPointer<NICConfig>& settings : message.NewNICConfigs)
    {
        for (const SmartPointer<NICConfig>& nic : host.NICs)
        {
            if (nic->MACAddress == settings->MACAddress)
            {
                *nic = *settings;
            }
        }
    }
}
} // namespace

SimulatedDevice::SimulatedDevice(const SmartPointer<DiscoveryHost>& host,
                                 const Nfx::System::Version& version,
                                 bool namesSourceNIC)
    : host(host)
    , version(version)
    , namesSourceNIC(namesSourceNIC)
{
    Resign();
}

SimulatedDevice::SimulatedDevice(const SignatureBroadcastMessage& said)
    : host(said.Host)
    , version(said.Version)
    , namesSourceNIC(!said.SourceNIC.IsNull())
{
    for (std::int32_t i = 0; namesSourceNIC && i < host->NICs.Count(); ++i)
    {
        if (host->NICs[i]->MACAddress == said.SourceNIC->MACAddress)
        {
            sourceNIC = i;
        }
    }
    Resign();
}

SimulatedDevice::SimulatedDevice(const SignatureBroadcastMessage& said, const String& text)
    : SimulatedDevice(said)
{
    signature = std::make_shared<const String>(text);
}

SimulatedDevice::SimulatedDevice(const String& text, const IPAddress& sender)
    : host(SmartPointer<DiscoveryHost>::Create())
    , version(DiscoveryMessage::ProtocolVersion())
    , isUnderstood(false)
    , signature(std::make_shared<const String>(text))
{
    host->HostName = "(not understood)";
    host->NICs.Add(SmartPointer<NICConfig>::Create());
    host->NICs[0]->IPAddress = sender;
}

const DiscoveryHost& SimulatedDevice::Host() const
{
    return *host;
}

const NICConfig& SimulatedDevice::MainInterface() const
{
    return *host->NICs[sourceNIC];
}

std::shared_ptr<const String> SimulatedDevice::Signature() const
{
    return signature;
}

SimulatedDevice::Requests SimulatedDevice::RequestIn(const DiscoveryMessage& message) const
{
    if (dynamic_cast<const AllSendYourSignatureMessage*>(&message) != nullptr)
    {
        return Requests::Signature;
    }
    if (const auto* const question = dynamic_cast<const SendYourSignatureMessage*>(&message))
    {
        return question->Broadcast || Has(question->TargetedMACAddress) ? Requests::Signature : Requests::None;
    }
    if (const auto* const rename = dynamic_cast<const ChangeYourHostNameMessage*>(&message))
    {
        return rename->Broadcast || Has(rename->TargetedMACAddress) ? Requests::Change : Requests::None;
    }
    if (const auto* const settings = dynamic_cast<const ChangeYourIPConfigMessage*>(&message))
    {
        const bool isMeant = std::ranges::any_of(
            settings->NewNICConfigs, [this](const SmartPointer<NICConfig>& nic) { return Has(nic->MACAddress); });
        return isMeant ? Requests::Change : Requests::None;
    }
    return Requests::None;
}

bool SimulatedDevice::Change(const DiscoveryMessage& message)
{
    const auto* const rename = dynamic_cast<const ChangeYourHostNameMessage*>(&message);
    if (rename != nullptr && host->IsHostNameReadOnly)
    {
        return false;
    }
    if (next.IsNull())
    {
        next = SmartPointer<DiscoveryHost>::Create();
        next->Deserialize(host->ToJson());
    }
    if (rename != nullptr)
    {
        next->HostName = rename->NewHostName;
    }
    else if (const auto* const settings = dynamic_cast<const ChangeYourIPConfigMessage*>(&message))
    {
        TakeSettings(*next, *settings);
    }
    if (host->RebootRequiredForIPConfigChange)
    {
        return true;
    }
    Restart();
    return false;
}

void SimulatedDevice::SetNeedsReboot(bool needsReboot)
{
    if (isUnderstood && host->RebootRequiredForIPConfigChange != needsReboot)
    {
        if (!needsReboot)
        {
            Restart();
        }
        host->RebootRequiredForIPConfigChange = host->RebootRequiredForHostNameChange = needsReboot;
        Resign();
    }
}

void SimulatedDevice::Restart()
{
    if (!next.IsNull())
    {
        host = std::move(next);
        Resign();
    }
}

void SimulatedDevice::Resign()
{
    signature = std::make_shared<const String>(Say<SignatureBroadcastMessage>());
}

bool SimulatedDevice::Has(const MACAddress& address) const
{
    return std::ranges::any_of(host->NICs,
                               [&address](const SmartPointer<NICConfig>& nic) { return nic->MACAddress == address; });
}
} // namespace Zent::Discovery::Simulator
