#include "Simulation.h"

#include "AddressPlan.h"
#include "DeviceFactory.h"
#include "Discovery/DiscoveryPorts.h"
#include "Discovery/Message/ByeMessage.h"
#include "Discovery/Message/DiscoveryMessageDeserializer.h"
#include "Discovery/Message/HelloMessage.h"
#include "Listener.h"
#include "Recording.h"
#include "Replay.h"
#include "system/Exception.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>

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

/// About wrong lines in a row: the input may be no text at all, and endless.
constexpr unsigned MaximumComplaints = 10;

/// Closer to the time than a sleeping thread is woken. What is left of a wait is spent running.
constexpr std::chrono::microseconds TimerSlack(200);

void WaitUntil(std::chrono::steady_clock::time_point time)
{
    std::this_thread::sleep_until(time - TimerSlack);
    while (std::chrono::steady_clock::now() < time)
    {
    }
}

/// The message, with a member that nobody reads, of at least so many bytes.
String PaddedTo(std::size_t bytes, const String& text)
{
    static constexpr std::string_view Opening = ",\"Padding\":\"";
    static constexpr std::string_view Closing = "\"}";
    const std::string_view body = text.View().substr(0, text.View().size() - 1); // without the closing brace
    const std::size_t size = body.size() + Opening.size() + Closing.size();
    std::string padded(body);
    padded.append(Opening).append(bytes > size ? bytes - size : 0, 'x').append(Closing);
    return String(std::string_view(padded));
}

String Formed(const String& text, const Treatment& treatment)
{
    static constexpr std::size_t OversizeBytes = 60000;
    switch (treatment.Form)
    {
    case Treatment::Forms::Cut:
        return String(text.View().substr(
            0, static_cast<std::size_t>(static_cast<double>(text.View().size()) * treatment.KeptShare)));
    case Treatment::Forms::Padded:
        return PaddedTo(OversizeBytes, text);
    case Treatment::Forms::Whole:
        break;
    }
    return text;
}

std::vector<ReplayedDevice> Invent(const SimulationOptions& options, const AddressPlan& plan)
{
    const DeviceFactory factory(options.Seed);
    const Version version = options.ProtocolVersion.empty()
                                ? DiscoveryMessage::ProtocolVersion()
                                : Version::Parse(String(std::string_view(options.ProtocolVersion)));
    std::vector<ReplayedDevice> devices;
    for (std::size_t i = 0; i < static_cast<std::size_t>(options.Count); ++i)
    {
        const SmartPointer<DiscoveryHost> host = factory.Create(i, plan.AddressOf(i), plan.SubNetMask());
        host->IsHostNameReadOnly = options.HostNamesAreReadOnly;
        devices.push_back({SimulatedDevice(host, version, options.NamesSourceNIC), std::chrono::milliseconds(0)});
    }
    return devices;
}
} // namespace

Simulation::Simulation(const SimulationOptions& options, Inbox& inbox, std::ostream& out)
    : options(options)
    , inbox(inbox)
    , out(out)
    , participants(ParticipantsOf(options))
    , faults(options.Seed, participants.size(), options.AtStart)
    , trace(options.TracePath)
    , port(DiscoveryPorts::GetInstance()->ClientPort(), DiscoveryPorts::GetInstance()->ServerPort(), options.SharesPort)
{
}

std::vector<Simulation::Participant> Simulation::ParticipantsOf(const SimulationOptions& options)
{
    const AddressPlan plan(options.Addresses, options.Network);
    std::vector<Participant> participants;
    for (ReplayedDevice& device :
         options.ReplayPath.empty() ? Invent(options, plan) : Replay::DevicesOf(Recording::Read(options.ReplayPath)))
    {
        device.Device.SetNeedsReboot(options.AtStart.Reboot.count() > 0);
        participants.push_back({std::move(device.Device), plan.AddressOf(participants.size()), device.Delay});
    }
    return participants;
}

void Simulation::Run()
{
    const Listener listener(port, inbox);
    if (options.SaysHello)
    {
        AnnounceAll<HelloMessage>();
    }
    for (const Participant& participant : participants)
    {
        const NICConfig& main = participant.Device.MainInterface();
        out << participant.Device.Host().HostName.View() << '\t' << Text(main.MACAddress) << '\t'
            << Text(main.IPAddress) << '\n';
    }
    out << "ready" << std::endl;
    Serve();
    if (options.SaysBye)
    {
        AnnounceAll<ByeMessage>();
    }
}

void Simulation::Serve()
{
    while (!inbox.IsClosed())
    {
        if (const std::optional<Inbox::Entry> entry = inbox.Take(NextWake()))
        {
            Handle(*entry);
        }
        if (const std::optional<std::size_t> device = faults.TakeRebooted(SinceStart()))
        {
            Restart(*device);
        }
        if (faults.Current().FloodRate > 0)
        {
            Flood();
        }
        const std::optional<Clock::time_point> next = answers.Next();
        if (next && *next <= Clock::now() + TimerSlack)
        {
            WaitUntil(*next);
            Dispatch(answers.Take());
        }
    }
}

std::optional<Simulation::Clock::time_point> Simulation::NextWake() const
{
    std::optional<Clock::time_point> wake;
    const auto wakeBy = [&wake](Clock::time_point time) { wake = wake ? std::min(*wake, time) : time; };
    if (const std::optional<Clock::time_point> next = answers.Next())
    {
        wakeBy(*next - TimerSlack);
    }
    if (const std::optional<std::chrono::milliseconds> rebooted = faults.NextRebooted())
    {
        wakeBy(start + *rebooted);
    }
    if (faults.Current().FloodRate > 0)
    {
        wakeBy(floodDue);
    }
    return wake;
}

void Simulation::Flood()
{
    // Numbers that no answer reaches: a flood leaves the chances of answers alone.
    static constexpr std::uint64_t FirstNumber = std::uint64_t{1} << 63;
    static constexpr std::chrono::milliseconds MaximumDebt(100);
    const Clock::time_point now = Clock::now();
    if (now < floodDue)
    {
        return;
    }
    const auto device = static_cast<std::size_t>(floods % participants.size());
    const Treatment treatment = faults.Treat(device, FirstNumber + floods / participants.size());
    Deliver({device, participants[device].Device.Signature(), IPAddress::Broadcast(), treatment});
    ++floods;
    floodDue = std::max(floodDue, now - MaximumDebt) +
               std::chrono::nanoseconds(std::chrono::seconds(1)) / faults.Current().FloodRate;
}

void Simulation::Handle(const Inbox::Entry& entry)
{
    if (const auto* const request = std::get_if<Request>(&entry))
    {
        Answer(*request);
    }
    else
    {
        Follow(std::get<std::string>(entry));
    }
}

void Simulation::Follow(const std::string& line)
{
    try
    {
        const std::optional<std::size_t> revived = faults.Follow(line);
        out << line << std::endl;
        trace.Note("line " + line);
        wrongLines = 0;
        for (Participant& participant : participants)
        {
            participant.Device.SetNeedsReboot(faults.Current().Reboot.count() > 0);
        }
        if (revived)
        {
            Restart(*revived);
        }
    }
    catch (const std::invalid_argument& error)
    {
        ++wrongLines;
        if (wrongLines <= MaximumComplaints)
        {
            Complain("standard input: " + std::string(error.what()));
        }
        if (wrongLines == MaximumComplaints)
        {
            Complain("standard input: nothing more is said until a line is right");
        }
    }
}

void Simulation::Answer(const Request& request)
{
    SmartPointer<DiscoveryMessage> message;
    try
    {
        message = DiscoveryMessageDeserializer().Deserialize(request.Text);
    }
    catch (const Exception& exception)
    {
        trace.Note("unreadable message from " + Text(request.Sender));
        Complain("unreadable message from " + Text(request.Sender) + ": " + Text(exception.GetError()));
        return;
    }
    trace.Note(Text(message->GetMessageType()) + " from " + Text(request.Sender) + " to " + Text(request.Destination));
    for (std::size_t device = 0; device < participants.size(); ++device)
    {
        if (Hears(participants[device], request.Destination) && IsAlive(device))
        {
            Answer(device, *message, request);
        }
    }
}

bool Simulation::Hears(const Participant& participant, const IPAddress& destination)
{
    return destination == IPAddress::Broadcast() || destination == participant.Address ||
           destination == participant.Device.MainInterface().IPAddress;
}

bool Simulation::IsAlive(std::size_t device) const
{
    return faults.IsAlive(device, SinceStart());
}

std::chrono::milliseconds Simulation::SinceStart() const
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
}

void Simulation::Answer(std::size_t device, const DiscoveryMessage& message, const Request& request)
{
    Participant& participant = participants[device];
    const SimulatedDevice::Requests asked = participant.Device.RequestIn(message);
    if (faults.Current().IsSilent || asked == SimulatedDevice::Requests::None)
    {
        return;
    }
    if (asked == SimulatedDevice::Requests::Change)
    {
        Change(device, message);
    }
    if (options.Talks)
    {
        out << Text(participant.Device.MainInterface().MACAddress) << " answers " << Text(message.GetMessageType())
            << " to " << Text(request.Sender) << std::endl;
    }
    const Treatment treatment = faults.Treat(device, participant.Datagrams++);
    trace.Note(device, "answers", treatment);
    const IPAddress target = faults.Current().AnswersByBroadcast ? IPAddress::Broadcast() : request.Sender;
    answers.Add(Clock::now() + participant.Delay + treatment.Delay,
                {device, participant.Device.Signature(), target, treatment});
}

void Simulation::Change(std::size_t device, const DiscoveryMessage& message)
{
    Participant& participant = participants[device];
    if (faults.Refuses(device, participant.Changes++))
    {
        trace.Note(device, "refuses the change");
    }
    else if (participant.Device.Change(message))
    {
        trace.Note(device, "needs a reboot");
        faults.Reboot(device, SinceStart());
    }
}

void Simulation::Restart(std::size_t device)
{
    participants[device].Device.Restart();
    if (options.SaysHello && IsAlive(device))
    {
        Announce<HelloMessage>(device);
    }
}

template <class TMessage>
void Simulation::AnnounceAll()
{
    for (std::size_t device = 0; device < participants.size(); ++device)
    {
        Announce<TMessage>(device);
    }
}

template <class TMessage>
void Simulation::Announce(std::size_t device)
{
    Participant& participant = participants[device];
    const Treatment treatment = faults.Treat(device, participant.Datagrams++);
    trace.Note(device, "says " + Text(TMessage().GetMessageType()), treatment);
    const auto text = std::make_shared<const String>(participant.Device.Say<TMessage>());
    Deliver({device, text, IPAddress::Broadcast(), treatment});
}

void Simulation::Dispatch(Delivery delivery)
{
    static constexpr std::chrono::milliseconds Detour(20);
    const Treatment& how = delivery.How;
    if (delivery.IsOnTheWay || (how.HoldUp.count() == 0 && !how.IsOvertaken))
    {
        Deliver(delivery);
        return;
    }
    delivery.IsOnTheWay = true;
    const Clock::time_point now = Clock::now();
    answers.Add(how.IsOvertaken ? now + how.HoldUp + Detour : cable.PassedAt(now, how.HoldUp), delivery);
}

void Simulation::Deliver(const Delivery& delivery)
{
    const Behaviour& behaviour = faults.Current();
    if (delivery.How.Copies == 0 || !IsAlive(delivery.Device))
    {
        return;
    }
    const String& text = *delivery.Text;
    const bool needsPadding = text.View().size() < behaviour.SignatureBytes;
    const String datagram = Formed(needsPadding ? PaddedTo(behaviour.SignatureBytes, text) : text, delivery.How);
    for (unsigned copy = 0; copy < delivery.How.Copies; ++copy)
    {
        WaitUntil(cable.FreeAt());
        cable.Occupy(Clock::now(), datagram.View().size(), behaviour.MegabitsPerSecond);
        Send(participants[delivery.Device], datagram, delivery.Target);
    }
}

void Simulation::Send(Participant& participant, const String& text, const IPAddress& target)
{
    const IPAddress& given = participant.Device.MainInterface().IPAddress;
    if (!(given == participant.Address))
    {
        const std::string reason = TrySend(text, given, target);
        if (reason.empty())
        {
            participant.Address = given;
            return;
        }
        if (!(given == participant.Unusable)) // is told once: devices that were recorded seldom find their addresses
        {
            participant.Unusable = given;
            Complain(reason + "; it sends from " + Text(participant.Address));
        }
    }
    if (const std::string reason = TrySend(text, participant.Address, target); !reason.empty())
    {
        Complain(reason);
    }
}

std::string Simulation::TrySend(const String& text, const IPAddress& from, const IPAddress& target)
{
    std::string reason;
    try
    {
        port.Send(text, from, target);
        return "";
    }
    catch (const Exception& exception)
    {
        reason = Text(exception);
    }
    catch (const std::system_error& error)
    {
        reason = error.what();
    }
    return "from " + Text(from) + " to " + Text(target) + ": " + reason;
}
} // namespace Zent::Discovery::Simulator
