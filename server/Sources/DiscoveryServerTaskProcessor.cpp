#include "Server/DiscoveryServerTaskProcessor.h"

#include "Discovery/Message/AllSendYourSignatureMessage.h"
#include "Discovery/Message/ChangeYourHostNameMessage.h"
#include "Discovery/Message/ChangeYourIPConfigMessage.h"
#include "Discovery/Message/SendYourSignatureMessage.h"
#include "Server/NotifyByeMessageReceivedAction.h"
#include "Server/NotifyClientSignatureReceivedAction.h"
#include "Server/NotifyHelloMessageReceivedAction.h"
#include "Server/SendChangeYourHostNameAction.h"
#include "Server/SendChangeYourIPConfigAction.h"
#include "Server/SendSendYourSignatureAction.h"

namespace Zent::Discovery::Server
{
using Nfx::System::Event;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Net::IPAddress;

namespace
{
String SendingLine(const DiscoveryMessage& message)
{
    return "Sending message of type " + message.GetMessageType().ToString();
}
} // namespace

DiscoveryServerTaskProcessor::DiscoveryServerTaskProcessor(const SmartPointer<IDiscoverySocket>& socket)
    : DiscoveryTaskProcessor(socket, "ServerTaskProcessor")
{
}

void DiscoveryServerTaskProcessor::Stop()
{
    Log().Write("Stopping Task Processor", LogStreamLevel::Critical);
    DiscoveryTaskProcessor::Stop();
    Log().Write("---Task Processor stopped---", LogStreamLevel::Critical);
}

Event<ClientSignatureReceivedEventArgs>& DiscoveryServerTaskProcessor::ClientSignatureReceived()
{
    return clientSignatureReceived;
}

Event<HelloMessageReceivedEventArgs>& DiscoveryServerTaskProcessor::HelloMessageReceived()
{
    return helloMessageReceived;
}

Event<ByeMessageReceivedEventArgs>& DiscoveryServerTaskProcessor::ByeMessageReceived()
{
    return byeMessageReceived;
}

HostRegistrations DiscoveryServerTaskProcessor::Registrations() const
{
    HostRegistrations registrations;
    registrations.Provider = BroadcastProvider();
    registrations.ClientSignatureReceived = clientSignatureReceived.Handlers();
    registrations.HelloMessageReceived = helloMessageReceived.Handlers();
    registrations.ByeMessageReceived = byeMessageReceived.Handlers();
    return registrations;
}

void DiscoveryServerTaskProcessor::Install(const HostRegistrations& registrations)
{
    if (!registrations.Provider.IsNull())
    {
        SetBroadcastProvider(registrations.Provider);
    }
    registrations.ClientSignatureReceived.ForEach(
        [this](const auto& handler) { clientSignatureReceived.Add(handler); });
    registrations.HelloMessageReceived.ForEach([this](const auto& handler) { helloMessageReceived.Add(handler); });
    registrations.ByeMessageReceived.ForEach([this](const auto& handler) { byeMessageReceived.Add(handler); });
}

void DiscoveryServerTaskProcessor::ClearHandlers()
{
    clientSignatureReceived.Clear();
    helloMessageReceived.Clear();
    byeMessageReceived.Clear();
}

void DiscoveryServerTaskProcessor::ProcessTask(const ServerActionArgs& task)
{
    const ServerAction& action = *task.Action();
    switch (action.Type())
    {
    case ServerActionType::SendSendYourSignatureMessage:
        SendSendYourSignature(action);
        break;
    case ServerActionType::SendAllSendYourSignatureMessage:
        SendAllSendYourSignature();
        break;
    case ServerActionType::SendChangeYourIPConfigMessage:
        SendChangeYourIPConfig(action);
        break;
    case ServerActionType::SendChangeYourHostNameMessage:
        SendChangeYourHostName(action);
        break;
    case ServerActionType::NotifyClientSignatureReceived:
        Notify<NotifyClientSignatureReceivedAction>(action, "Client Signature", clientSignatureReceived);
        break;
    case ServerActionType::NotifyHelloMessageReceived:
        Notify<NotifyHelloMessageReceivedAction>(action, "Hello message", helloMessageReceived);
        break;
    case ServerActionType::NotifyByeMessageReceived:
        Notify<NotifyByeMessageReceivedAction>(action, "Bye message", byeMessageReceived);
        break;
    default:
        Log().Write("Action type not supported ! Ignoring...", LogStreamLevel::Critical);
        break;
    }
}

template <class TAction, class TEventArgs>
void DiscoveryServerTaskProcessor::Notify(const ServerAction& action, const char* what, Event<TEventArgs>& event)
{
    const auto& message = *dynamic_cast<const TAction&>(action).Message();
    if (ComponentLog::IsEnabled(LogStreamLevel::Standard))
    {
        String line;
        line.Reserve(80 + message.Host->HostName.Length());
        line.Append("Notifying receipt of ").Append(what).Append(". Client's host name : ");
        Log().Write(line += message.Host->HostName, LogStreamLevel::Standard);
    }
    event.Raise(this, TEventArgs(message.Host, message.SourceNIC));
}

void DiscoveryServerTaskProcessor::SendSendYourSignature(const ServerAction& action)
{
    const auto& request = dynamic_cast<const SendSendYourSignatureAction&>(action);
    const IPAddress& address = request.TargetedIPAddress();
    if (request.TargetsMACAddress())
    {
        const SendYourSignatureMessage message(request.TargetedMACAddress());
        Log().Write(SendingLine(message) + " to " + request.TargetedMACAddress().ToString(), LogStreamLevel::Standard);
        Send(message, address);
        return;
    }
    const SendYourSignatureMessage message(DiscoveryMessage::ProtocolVersion());
    Log().Write(SendingLine(message) + " to " + address.ToString(), LogStreamLevel::Standard);
    Send(message, address);
}

void DiscoveryServerTaskProcessor::SendAllSendYourSignature()
{
    const AllSendYourSignatureMessage message;
    Log().Write(SendingLine(message), LogStreamLevel::Standard);
    Send(message, IPAddress::Broadcast());
}

void DiscoveryServerTaskProcessor::SendChangeYourIPConfig(const ServerAction& action)
{
    const ChangeYourIPConfigMessage message(*dynamic_cast<const SendChangeYourIPConfigAction&>(action).NICConfigs());
    Log().Write(SendingLine(message) + ".", LogStreamLevel::Standard);
    Send(message, IPAddress::Broadcast());
}

void DiscoveryServerTaskProcessor::SendChangeYourHostName(const ServerAction& action)
{
    const auto& request = dynamic_cast<const SendChangeYourHostNameAction&>(action);
    const IPAddress& address = request.TargetedIPAddress();
    if (request.TargetsMACAddress())
    {
        const ChangeYourHostNameMessage message(request.TargetedMACAddress(), request.NewHostName());
        Log().Write(SendingLine(message) + " to " + request.TargetedMACAddress().ToString() + ".",
                    LogStreamLevel::Standard);
        Send(message, address);
        return;
    }
    const ChangeYourHostNameMessage message(DiscoveryMessage::ProtocolVersion(), request.NewHostName());
    Log().Write(SendingLine(message) + " to " + address.ToString() + ".", LogStreamLevel::Standard);
    Send(message, address);
}
} // namespace Zent::Discovery::Server
