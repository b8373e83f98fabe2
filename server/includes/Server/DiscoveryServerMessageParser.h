#pragma once

#include "Discovery/DiscoveryMessageParser.h"
#include "Discovery/Message/DiscoveryMessage.h"
#include "Discovery/Message/DiscoveryMessageDeserializer.h"
#include "Server/ServerActionArgs.h"
#include "system/Event.h"

namespace Zent::Discovery::Server
{
/// Turns the messages that a server cares about into actions for the task processor, and drops the others.
class DiscoveryServerMessageParser final : public DiscoveryMessageParser
{
public:
    DiscoveryServerMessageParser();

    /// Raised on the parser thread with each action.
    Nfx::System::Event<ServerActionArgs>& ActionReady();

protected:
    void ProcessDatagram(const Nfx::System::SmartPointer<Datagram>& datagram) override;

private:
    Nfx::System::SmartPointer<DiscoveryMessage> Deserialize(const Nfx::System::String& text) const;
    bool IsAccepted(const Nfx::System::Version& version) const;
    void LogHandled(const DiscoveryMessage& message, const Nfx::System::String& text) const;
    Nfx::System::SmartPointer<ServerAction> ActionFor(const Nfx::System::SmartPointer<DiscoveryMessage>& message) const;

    const DiscoveryMessageDeserializer deserializer;
    Nfx::System::Event<ServerActionArgs> actionReady;
};
} // namespace Zent::Discovery::Server
