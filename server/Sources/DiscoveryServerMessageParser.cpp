#include "Server/DiscoveryServerMessageParser.h"

#include "Discovery/Attempt.h"
#include "Server/MinimumCompatibleVersion.h"
#include "Server/NotifyByeMessageReceivedAction.h"
#include "Server/NotifyClientSignatureReceivedAction.h"
#include "Server/NotifyHelloMessageReceivedAction.h"

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
SmartPointer<ServerAction> Create(const SmartPointer<TMessage>& message)
{
    return SmartPointer<TAction>::Create(message);
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
    const SmartPointer<DiscoveryMessage> message = Deserialize(text);
    if (!IsAccepted(message->Version))
    {
        return;
    }
    LogHandled(*message, text);
    const SmartPointer<ServerAction> action = ActionFor(message);
    if (action.IsNull())
    {
        Log().Write("Message ignored", LogStreamLevel::Standard);
        return;
    }
    actionReady.Raise(this, ServerActionArgs(action, static_cast<std::int64_t>(text.Length())));
}

SmartPointer<DiscoveryMessage> DiscoveryServerMessageParser::Deserialize(const String& text) const
{
    SmartPointer<DiscoveryMessage> message;
    Attempt([&] { message = deserializer.Deserialize(text); },
            [this](const Exception&) {
                Log().Write("Message dropped : bad format !", LogStreamLevel::Critical);
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

void DiscoveryServerMessageParser::LogHandled(const DiscoveryMessage& message, const String& text) const
{
    const DiscoveryMessageType type = message.GetMessageType();
    switch (type)
    {
    case DiscoveryMessageType::SignatureBroadcast:
    case DiscoveryMessageType::Hello:
    case DiscoveryMessageType::Bye:
        if (ComponentLog::IsEnabled(LogStreamLevel::Standard))
        {
            Log().Write("Message type : " + type.ToString(), LogStreamLevel::Standard);
        }
        if (ComponentLog::IsEnabled(LogStreamLevel::Debug))
        {
            Log().Write("Message : " + text, LogStreamLevel::Debug);
        }
        break;
    default:
        if (ComponentLog::IsEnabled(LogStreamLevel::Debug))
        {
            Log().Write("Message type : " + type.ToString(), LogStreamLevel::Debug);
        }
        break;
    }
}

SmartPointer<ServerAction> DiscoveryServerMessageParser::ActionFor(const SmartPointer<DiscoveryMessage>& message) const
{
    switch (message->GetMessageType())
    {
    case DiscoveryMessageType::SignatureBroadcast:
        return Create<NotifyClientSignatureReceivedAction>(message.As<SignatureBroadcastMessage>());
    case DiscoveryMessageType::Hello:
        return Create<NotifyHelloMessageReceivedAction>(message.As<HelloMessage>());
    case DiscoveryMessageType::Bye:
        return Create<NotifyByeMessageReceivedAction>(message.As<ByeMessage>());
    default:
        return nullptr;
    }
}
} // namespace Zent::Discovery::Server
