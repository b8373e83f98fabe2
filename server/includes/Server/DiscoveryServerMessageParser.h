#pragma once

#include "Discovery/DiscoveryMessageParser.h"
#include "Discovery/Message/DiscoveryMessage.h"
#include "Discovery/Message/DiscoveryMessageDeserializer.h"
#include "Server/ServerAction.h"
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
    Nfx::System::SmartPointer<DiscoveryMessage> Deserialize(const Datagram& datagram) const;
    bool IsAccepted(const Nfx::System::Version& version) const;
    void LogSender(const Datagram& datagram) const;
    void LogType(const DiscoveryMessageType& type, const Nfx::System::LogStreams::LogStreamLevel& level) const;

    const DiscoveryMessageDeserializer deserializer;
    Nfx::System::Event<ServerActionArgs> actionReady;
};
} // namespace Zent::Discovery::Server
