#pragma once

#include "Discovery/DiscoveryHost.h"
#include "Discovery/Message/ChangeYourHostNameMessage.h"
#include "Discovery/Message/ChangeYourIPConfigMessage.h"
#include "Discovery/Message/SignatureBroadcastMessage.h"
#include "system/SmartPointer.h"
#include "system/Version.h"

#include <memory>

namespace Zent::Discovery::Simulator
{
/// A device as the server sees it: what it is, and what it makes of a message. Main thread only.
class SimulatedDevice final
{
public:
    /// The host has at least one interface, the one that the device sends from. version is that of its messages.
    SimulatedDevice(const Nfx::System::SmartPointer<DiscoveryHost>& host,
                    const Nfx::System::Version& version,
                    bool namesSourceNIC);

    const DiscoveryHost& Host() const;
    const NICConfig& MainInterface() const;

    /// Does what the message asks for. True when the device answers with its signature: when it was asked for it, or
    /// told to change something, because then it shows its new state.
    bool Obey(const DiscoveryMessage& message);

    /// The text of its signature, as it is now; made anew only when the device changes.
    std::shared_ptr<const Nfx::System::String> Signature() const;

    /// The text of a message of the device, of the kind TMessage: SignatureBroadcastMessage, HelloMessage or
    /// ByeMessage.
    template <class TMessage>
    Nfx::System::String Say() const
    {
        TMessage message(host, namesSourceNIC ? host->NICs[0] : nullptr);
        message.Version = version;
        return message.ToJson();
    }

private:
    void Resign();
    bool IsMeant(const DiscoveryMessage& message, const MACAddress& target) const;
    bool TakeHostName(const ChangeYourHostNameMessage& message);
    bool TakeSettings(const ChangeYourIPConfigMessage& message);

    const Nfx::System::SmartPointer<DiscoveryHost> host;
    const Nfx::System::Version version;
    const bool namesSourceNIC;
    std::shared_ptr<const Nfx::System::String> signature;
};
} // namespace Zent::Discovery::Simulator
