#include "Server/DiscoveryServerTaskProcessor.h"

#include "Discovery/Message/AllSendYourSignatureMessage.h"
#include "Discovery/Message/ChangeYourHostNameMessage.h"
#include "Discovery/Message/ChangeYourIPConfigMessage.h"
#include "Discovery/Message/SendYourSignatureMessage.h"

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

Event<HostEventArgs>& DiscoveryServerTaskProcessor::Received(const HostEventKind& kind)
{
    return received[kind.Place()];
}

HostRegistrations DiscoveryServerTaskProcessor::Registrations() const
{
    HostRegistrations registrations;
    registrations.Provider = BroadcastProvider();
    for (std::size_t place = 0; place < received.size(); ++place)
    {
        registrations.Handlers[place] = received[place].Handlers();
    }
    return registrations;
}

void DiscoveryServerTaskProcessor::Install(const HostRegistrations& registrations)
{
    if (!registrations.Provider.IsNull())
    {
        SetBroadcastProvider(registrations.Provider);
    }
    for (std::size_t place = 0; place < received.size(); ++place)
    {
        registrations.Handlers[place].ForEach([&](const auto& handler) { received[place].Add(handler); });
    }
}

void DiscoveryServerTaskProcessor::ClearHandlers()
{
    for (Event<HostEventArgs>& event : received)
    {
        event.Clear();
    }
}

void DiscoveryServerTaskProcessor::ProcessTask(const ServerActionArgs& task)
{
    task.Action()->HandleBy(*this);
}

void DiscoveryServerTaskProcessor::Handle(const SendSendYourSignatureAction& action)
{
    if (action.TargetsMACAddress())
    {
        SendToDevice(action, SendYourSignatureMessage(action.TargetedMACAddress()), "");
    }
    else
    {
        SendToDevice(action, SendYourSignatureMessage(DiscoveryMessage::ProtocolVersion()), "");
    }
}

void DiscoveryServerTaskProcessor::Handle(const SendAllSendYourSignatureAction&)
{
    const AllSendYourSignatureMessage message;
    Log().Write(SendingLine(message), LogStreamLevel::Standard);
    Send(message, IPAddress::Broadcast());
}

void DiscoveryServerTaskProcessor::Handle(const SendChangeYourIPConfigAction& action)
{
    const ChangeYourIPConfigMessage message(*action.NICConfigs());
    Log().Write(SendingLine(message) + ".", LogStreamLevel::Standard);
    Send(message, IPAddress::Broadcast());
}

void DiscoveryServerTaskProcessor::Handle(const SendChangeYourHostNameAction& action)
{
    if (action.TargetsMACAddress())
    {
        SendToDevice(action, ChangeYourHostNameMessage(action.TargetedMACAddress(), action.NewHostName()), ".");
    }
    else
    {
        SendToDevice(action, ChangeYourHostNameMessage(DiscoveryMessage::ProtocolVersion(), action.NewHostName()), ".");
    }
}

void DiscoveryServerTaskProcessor::SendToDevice(const DeviceAction& action,
                                                const DiscoveryMessage& message,
                                                const char* end)
{
    const String target =
        action.TargetsMACAddress() ? action.TargetedMACAddress().ToString() : action.TargetedIPAddress().ToString();
    Log().Write(SendingLine(message) + " to " + target + end, LogStreamLevel::Standard);
    Send(message, action.TargetedIPAddress());
}

void DiscoveryServerTaskProcessor::Handle(const NotifyAction& action)
{
    const SignatureBroadcastMessage& message = *action.Message();
    if (ComponentLog::IsEnabled(LogStreamLevel::Standard))
    {
        String line;
        line.Reserve(80 + message.Host->HostName.Length());
        line.Append("Notifying receipt of ").Append(HostEventKind::Names[action.Kind().Place()].Name);
        line.Append(". Client's host name : ");
        Log().Write(line += message.Host->HostName, LogStreamLevel::Standard);
    }
    Received(action.Kind()).Raise(this, HostEventArgs(action.Kind(), message.Host, message.SourceNIC));
}

void DiscoveryServerTaskProcessor::HandleOther(const ServerAction&)
{
    Log().Write("Action type not supported ! Ignoring...", LogStreamLevel::Critical);
}
} // namespace Zent::Discovery::Server
