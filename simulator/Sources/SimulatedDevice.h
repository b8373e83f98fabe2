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

    /// A device that has said this; its host has at least one interface.
    explicit SimulatedDevice(const SignatureBroadcastMessage& said);

    /// And that goes on saying it in just these words, those of the message, until something about it changes.
    SimulatedDevice(const SignatureBroadcastMessage& said, const Nfx::System::String& text);

    /// A device that answers with a text that is no signature. It has a name and an address alone, and stays as it is.
    SimulatedDevice(const Nfx::System::String& text, const Nfx::System::Net::IPAddress& sender);

    const DiscoveryHost& Host() const;
    const NICConfig& MainInterface() const;

    enum class Requests
    {
        None,      // the message is not meant for this device, or is what other devices say
        Signature, // it is asked for its signature
        Change     // it is told to change something
    };

    /// What the message wants of this device. It answers everything with its signature, changes, too: it shows what
    /// has become of it.
    Requests RequestIn(const DiscoveryMessage& message) const;

    /// Makes the change that the message asks for; a name that may not be changed stays. True when it holds only after
    /// Restart.
    bool Change(const DiscoveryMessage& message);

    /// Whether changes hold only after Restart, which its signature then says. What waits for it holds now when they
    /// do not.
    void SetNeedsReboot(bool needsReboot);

    /// What was changed holds from now on.
    void Restart();

    /// The text of its signature, as it is now; made anew only when the device changes.
    std::shared_ptr<const Nfx::System::String> Signature() const;

    /// The text of a message of the device, of the kind TMessage: SignatureBroadcastMessage, HelloMessage or
    /// ByeMessage.
    template <class TMessage>
    Nfx::System::String Say() const
    {
        TMessage message(host, namesSourceNIC ? host->NICs[sourceNIC] : nullptr);
        message.Version = version;
        return message.ToJson();
    }

private:
    void Resign();
    bool Has(const MACAddress& address) const;

    Nfx::System::SmartPointer<DiscoveryHost> host;
    Nfx::System::SmartPointer<DiscoveryHost> next; // what the host becomes with Restart; empty when nothing waits
    Nfx::System::Version version;
    bool namesSourceNIC = false;
    std::int32_t sourceNIC = 0; // the index of the interface that it sends from
    bool isUnderstood = true;   // what it says can be made from what it is
    std::shared_ptr<const Nfx::System::String> signature;
};
} // namespace Zent::Discovery::Simulator
