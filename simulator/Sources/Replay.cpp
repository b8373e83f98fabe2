#include "Replay.h"

#include "Discovery/Message/DiscoveryMessageDeserializer.h"
#include "Discovery/Message/SignatureBroadcastMessage.h"
#include "system/Exception.h"
#include "system/Net/IPAddress.h"

#include <set>
#include <string>
#include <string_view>
#include <utility>

using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::Net::IPAddress;

namespace Zent::Discovery::Simulator
{
namespace
{
/// The message of a device that has an interface to answer from; nothing when the text is no such message.
SmartPointer<SignatureBroadcastMessage> Understand(const String& text)
{
    try
    {
        const auto message = DiscoveryMessageDeserializer().Deserialize(text).As<SignatureBroadcastMessage>();
        return message.IsNull() || message->Host->NICs.Count() == 0 ? nullptr : message;
    }
    catch (const Nfx::System::Exception&)
    {
        return nullptr;
    }
}
} // namespace

std::vector<ReplayedDevice> Replay::DevicesOf(std::span<const RecordedDatagram> datagrams)
{
    std::vector<ReplayedDevice> devices;
    std::set<std::string> senders;
    std::vector<std::pair<const RecordedDatagram*, SmartPointer<SignatureBroadcastMessage>>> hellos;
    for (const RecordedDatagram& datagram : datagrams)
    {
        const String text{std::string_view(datagram.Text)};
        const SmartPointer<SignatureBroadcastMessage> message = Understand(text);
        if (message.IsNull())
        {
            const IPAddress sender = IPAddress::Parse(String(std::string_view(datagram.Sender)));
            devices.push_back({SimulatedDevice(text, sender), datagram.Time});
        }
        else if (message->GetMessageType() == DiscoveryMessageType::Hello)
        {
            hellos.emplace_back(&datagram, message);
        }
        else if (message->GetMessageType() == DiscoveryMessageType::SignatureBroadcast &&
                 senders.insert(datagram.Sender).second)
        {
            devices.push_back({SimulatedDevice(*message, text), datagram.Time});
        }
    }
    for (const auto& [datagram, message] : hellos)
    {
        if (senders.insert(datagram->Sender).second)
        {
            devices.push_back({SimulatedDevice(*message), std::chrono::milliseconds(0)});
        }
    }
    return devices;
}
} // namespace Zent::Discovery::Simulator
