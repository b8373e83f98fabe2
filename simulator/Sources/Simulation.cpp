#include "Simulation.h"

#include "AddressPlan.h"
#include "DeviceFactory.h"
#include "Discovery/Message/ByeMessage.h"
#include "Discovery/Message/DiscoveryMessageDeserializer.h"
#include "Discovery/Message/HelloMessage.h"
#include "Listener.h"
#include "system/Exception.h"

#include <iostream>
#include <string>
#include <system_error>

using Nfx::System::Exception;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::Version;
using Nfx::System::Net::IPAddress;

namespace Zent::Discovery::Simulator
{
namespace
{
std::string Text(const Nfx::System::Object& object)
{
    return std::string(object.ToString().View());
}

void Complain(const std::string& text)
{
    std::cerr << "device-simulator: " + text + "\n";
}
} // namespace

Simulation::Simulation(const SimulationOptions& options, RequestQueue& requests, std::ostream& out)
    : options(options)
    , requests(requests)
    , out(out)
    , network(options.SharesPort)
{
    const AddressPlan plan(options.Addresses, options.Network);
    const DeviceFactory factory(options.Seed);
    const Version version = options.ProtocolVersion.empty()
                                ? DiscoveryMessage::ProtocolVersion()
                                : Version::Parse(String(std::string_view(options.ProtocolVersion)));
    for (std::size_t i = 0; i < static_cast<std::size_t>(options.Count); ++i)
    {
        const IPAddress address = plan.AddressOf(i);
        const SmartPointer<DiscoveryHost> host = factory.Create(i, address, plan.SubNetMask());
        host->IsHostNameReadOnly = options.HostNamesAreReadOnly;
        participants.push_back({SimulatedDevice(host, version, options.NamesSourceNIC), address});
    }
}

void Simulation::Run()
{
    const Listener listener(network, requests);
    if (options.SaysHello)
    {
        Announce<HelloMessage>();
    }
    for (const Participant& participant : participants)
    {
        const NICConfig& main = participant.Device.MainInterface();
        out << participant.Device.Host().HostName.View() << '\t' << Text(main.MACAddress) << '\t'
            << Text(main.IPAddress) << '\n';
    }
    out << "ready" << std::endl;
    while (const std::optional<Request> request = requests.Take())
    {
        Handle(*request);
    }
    if (options.SaysBye)
    {
        Announce<ByeMessage>();
    }
}

void Simulation::Handle(const Request& request)
{
    SmartPointer<DiscoveryMessage> message;
    try
    {
        message = DiscoveryMessageDeserializer().Deserialize(request.Text);
    }
    catch (const Exception& exception)
    {
        Complain("unreadable message from " + Text(request.Sender) + ": " + Text(exception.GetError()));
        return;
    }
    for (Participant& participant : participants)
    {
        if (Hears(participant, request.Destination))
        {
            Handle(participant, *message, request);
        }
    }
}

bool Simulation::Hears(const Participant& participant, const IPAddress& destination)
{
    return destination == IPAddress::Broadcast() || destination == participant.Address ||
           destination == participant.Device.MainInterface().IPAddress;
}

void Simulation::Handle(Participant& participant, const DiscoveryMessage& message, const Request& request)
{
    if (!options.Answers || !participant.Device.Obey(message))
    {
        return;
    }
    if (options.Talks)
    {
        out << Text(participant.Device.MainInterface().MACAddress) << " answers " << Text(message.GetMessageType())
            << " to " << Text(request.Sender) << std::endl;
    }
    Send(participant, participant.Device.Say<SignatureBroadcastMessage>(), request.Sender);
}

template <class TMessage>
void Simulation::Announce()
{
    for (Participant& participant : participants)
    {
        Send(participant, participant.Device.Say<TMessage>(), IPAddress::Broadcast());
    }
}

void Simulation::Send(Participant& participant, const String& text, const IPAddress& target)
{
    const IPAddress& given = participant.Device.MainInterface().IPAddress;
    if (TrySend(text, given, target))
    {
        participant.Address = given;
    }
    else if (!(given == participant.Address))
    {
        TrySend(text, participant.Address, target);
    }
}

bool Simulation::TrySend(const String& text, const IPAddress& from, const IPAddress& target)
{
    std::string reason;
    try
    {
        network.Send(text, from, target);
        return true;
    }
    catch (const Exception& exception)
    {
        reason = Text(exception);
    }
    catch (const std::system_error& error)
    {
        reason = error.what();
    }
    Complain("from " + Text(from) + " to " + Text(target) + ": " + reason);
    return false;
}
} // namespace Zent::Discovery::Simulator
