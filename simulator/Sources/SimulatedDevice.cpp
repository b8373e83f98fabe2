#include "SimulatedDevice.h"

#include "Discovery/Message/AllSendYourSignatureMessage.h"
#include "Discovery/Message/SendYourSignatureMessage.h"

#include <algorithm>

using Nfx::System::SmartPointer;

namespace Zent::Discovery::Simulator
{
SimulatedDevice::SimulatedDevice(const SmartPointer<DiscoveryHost>& host,
                                 const Nfx::System::Version& version,
                                 bool namesSourceNIC)
    : host(host)
    , version(version)
    , namesSourceNIC(namesSourceNIC)
{
    Resign();
}

const DiscoveryHost& SimulatedDevice::Host() const
{
    return *host;
}

const NICConfig& SimulatedDevice::MainInterface() const
{
    return *host->NICs[0];
}

std::shared_ptr<const Nfx::System::String> SimulatedDevice::Signature() const
{
    return signature;
}

bool SimulatedDevice::Obey(const DiscoveryMessage& message)
{
    if (dynamic_cast<const AllSendYourSignatureMessage*>(&message) != nullptr)
    {
        return true;
    }
    if (const auto* const question = dynamic_cast<const SendYourSignatureMessage*>(&message))
    {
        return IsMeant(*question, question->TargetedMACAddress);
    }
    if (const auto* const rename = dynamic_cast<const ChangeYourHostNameMessage*>(&message))
    {
        return IsMeant(*rename, rename->TargetedMACAddress) && TakeHostName(*rename);
    }
    if (const auto* const settings = dynamic_cast<const ChangeYourIPConfigMessage*>(&message))
    {
        return TakeSettings(*settings);
    }
    return false; // what other devices say
}

void SimulatedDevice::Resign()
{
    signature = std::make_shared<const Nfx::System::String>(Say<SignatureBroadcastMessage>());
}

bool SimulatedDevice::IsMeant(const DiscoveryMessage& message, const MACAddress& target) const
{
    return message.Broadcast || std::ranges::any_of(host->NICs, [&target](const SmartPointer<NICConfig>& nic) {
               return nic->MACAddress == target;
           });
}

bool SimulatedDevice::TakeHostName(const ChangeYourHostNameMessage& message)
{
    if (!host->IsHostNameReadOnly)
    {
        host->HostName = message.NewHostName;
        Resign();
    }
    return true;
}

bool SimulatedDevice::TakeSettings(const ChangeYourIPConfigMessage& message)
{
    bool isMeant = false;
    for (const SmartPointer<NICConfig>& settings : message.NewNICConfigs)
    {
        for (const SmartPointer<NICConfig>& nic : host->NICs)
        {
            if (nic->MACAddress == settings->MACAddress)
            {
                *nic = *settings;
                isMeant = true;
            }
        }
    }
    if (isMeant)
    {
        Resign();
    }
    return isMeant;
}
} // namespace Zent::Discovery::Simulator
