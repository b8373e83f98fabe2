#include "Server/DiscoveryServerMessageParser.h"

#include "Discovery/Attempt.h"
#include "Server/MinimumCompatibleVersion.h"
#include "Server/ServerActions.h"

#include <iterator>

namespace Zent::Discovery::Server
{
using Nfx::System::Event;
using Nfx::System::Exception;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::Version;
using Nfx::System::LogStreams::LogStreamLevel;

namespace
{
template <class TAction, class TMessage>
SmartPointer<ServerAction> Create(const SmartPointer<DiscoveryMessage>& message)
{
    return SmartPointer<TAction>::Create(message.As<TMessage>());
}

using Creator = SmartPointer<ServerAction> (*)(const SmartPointer<DiscoveryMessage>& message);

/// What becomes of a kind of messages; a server acts on no others.
struct Notification final
{
    std::int32_t Type;
    Creator Create;
};

constexpr Notification Notifications[] = {
    {DiscoveryMessageType::SignatureBroadcast, &Create<NotifyClientSignatureReceivedAction, SignatureBroadcastMessage>},
    {DiscoveryMessageType::Hello, &Create<NotifyHelloMessageReceivedAction, HelloMessage>},
    {DiscoveryMessageType::Bye, &Create<NotifyByeMessageReceivedAction, ByeMessage>}};

static_assert(std::size(Notifications) == HostEventKind::Count);

/// Null for kinds that a server does not act on.
Creator CreatorFor(const DiscoveryMessageType& type)
{
    for (const Notification& notification : Notifications)
    {
        if (notification.Type == type)
        {
            return notification.Create;
        }
    }
    return nullptr;
}
} // namespace

DiscoveryServerMessageParser::DiscoveryServerMessageParser()
    : DiscoveryMessageParser("MessageParser")
{
}

Event<ServerActionArgs>& DiscoveryServerMessageParser::ActionReady()
{
    return actionReady;
}

void DiscoveryServerMessageParser::ProcessDatagram(const SmartPointer<Datagram>& datagram)
{
    const String& text = *datagram->Message;
    const SmartPointer<DiscoveryMessage> message = Deserialize(*datagram);
    if (!IsAccepted(message->Version))
    {
        LogSender(*datagram);
        return;
    }
    const DiscoveryMessageType type = message->GetMessageType();
    const Creator create = CreatorFor(type);
    if (create == nullptr)
    {
        LogType(type, LogStreamLevel::Debug);
        Log().Write("Message ignored", LogStreamLevel::Standard);
        return;
    }
    LogType(type, LogStreamLevel::Standard);
    if (ComponentLog::IsEnabled(LogStreamLevel::Debug))
    {
        Log().Write("Message : " + text, LogStreamLevel::Debug);
    }
    actionReady.Raise(this, ServerActionArgs(create(message), static_cast<std::int64_t>(text.Length())));
}

SmartPointer<DiscoveryMessage> DiscoveryServerMessageParser::Deserialize(const Datagram& datagram) const
{
    SmartPointer<DiscoveryMessage> message;
    Attempt([&] { message = deserializer.Deserialize(*datagram.Message); },
            [&](const Exception&) {
                Log().Write("Message dropped : bad format !", LogStreamLevel::Critical);
                LogSender(datagram);
                throw; // the loop adds a line of its own
            });
    return message;
}

bool DiscoveryServerMessageParser::IsAccepted(const Version& version) const
{
    const Version& own = DiscoveryMessage::ProtocolVersion();
    if (version == own)
    {
        return true;
    }
    Log().Write("Version mismatch with received message ! [" + own.ToString() + "] <> [" + version.ToString() + "].",
                LogStreamLevel::Standard);
    if (version < MinimumCompatibleVersion::Get())
    {
        Log().Write("The protocol version of the message is not supported ! Message dropped.",
                    LogStreamLevel::Critical);
        return false;
    }
    return true;
}

void DiscoveryServerMessageParser::LogSender(const Datagram& datagram) const
{
    if (ComponentLog::IsEnabled(LogStreamLevel::Debug))
    {
        Log().Write("Sender of the dropped message : " + datagram.RemoteEndPoint->Address().ToString(),
                    LogStreamLevel::Debug);
    }
}

void DiscoveryServerMessageParser::LogType(const DiscoveryMessageType& type, const LogStreamLevel& level) const
{
    if (ComponentLog::IsEnabled(level))
    {
        Log().Write("Message type : " + type.ToString(), level);
    }
}
} // namespace Zent::Discovery::Server
