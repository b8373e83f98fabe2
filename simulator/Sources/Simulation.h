#pragma once

#include "Cable.h"
#include "FaultPlan.h"
#include "Inbox.h"
#include "LocalPort.h"
#include "SimulatedDevice.h"
#include "SimulationOptions.h"
#include "Timetable.h"
#include "Trace.h"
#include "system/Net/IPAddress.h"
#include "system/String.h"

#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace Zent::Discovery::Simulator
{
/// Simulated devices on the network. Main thread only.
class Simulation final
{
public:
    /// Options, inbox and stream must outlive the simulation.
    /// @throws Nfx::System::Exception when an address is malformed or the devices' port cannot be bound;
    /// std::runtime_error.
    Simulation(const SimulationOptions& options, Inbox& inbox, std::ostream& out);

    /// Says Hello, lists the devices and a line "ready", answers requests and follows lines until the inbox is closed,
    /// and says Bye.
    void Run();

private:
    using Clock = std::chrono::steady_clock;

    struct Participant
    {
        SimulatedDevice Device;
        Nfx::System::Net::IPAddress Address;            // that it is known to be able to use
        std::chrono::milliseconds Delay{0};             // of its answers, beside what the behaviour asks for
        Nfx::System::Net::IPAddress Unusable = Address; // was tried in vain, and told of
        std::uint64_t Datagrams = 0;                    // that it has sent, lost ones included
        std::uint64_t Changes = 0;                      // that it was told to make, refused ones included
    };

    static std::vector<Participant> ParticipantsOf(const SimulationOptions& options);

    void Serve();

    /// When there is something to do, whatever comes in until then.
    std::optional<Clock::time_point> NextWake() const;

    void Flood();
    void Handle(const Inbox::Entry& entry);
    void Follow(const std::string& line);
    void Answer(const Request& request);
    void Answer(std::size_t device, const DiscoveryMessage& message, const Request& request);
    static bool Hears(const Participant& participant, const Nfx::System::Net::IPAddress& destination);
    void Change(std::size_t device, const DiscoveryMessage& message);

    /// What was changed holds, and the device says Hello.
    void Restart(std::size_t device);

    bool IsAlive(std::size_t device) const;
    std::chrono::milliseconds SinceStart() const;

    template <class TMessage>
    void AnnounceAll();
    template <class TMessage>
    void Announce(std::size_t device);

    /// Sends what leaves its device now, unless it is held up.
    void Dispatch(Delivery delivery);

    void Deliver(const Delivery& delivery);

    /// Sends from the address that the device was given, or from the one before when it is not one of this machine.
    void Send(Participant& participant, const Nfx::System::String& text, const Nfx::System::Net::IPAddress& target);

    /// Returns the reason when it is not possible; nothing otherwise.
    std::string TrySend(const Nfx::System::String& text,
                        const Nfx::System::Net::IPAddress& from,
                        const Nfx::System::Net::IPAddress& target);

    const SimulationOptions& options;
    Inbox& inbox;
    std::ostream& out;
    const Clock::time_point start = Clock::now();
    std::vector<Participant> participants;
    FaultPlan faults;
    Trace trace;
    Timetable answers;
    Cable cable;
    LocalPort port;
    Clock::time_point floodDue; // without meaning while the devices do not flood
    std::uint64_t floods = 0;   // that were sent
    unsigned wrongLines = 0;    // in a row
};
} // namespace Zent::Discovery::Simulator
