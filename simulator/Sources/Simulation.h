#pragma once

#include "DeviceNetwork.h"
#include "RequestQueue.h"
#include "SimulatedDevice.h"
#include "SimulationOptions.h"
#include "system/Net/IPAddress.h"
#include "system/String.h"

#include <iosfwd>
#include <vector>

namespace Zent::Discovery::Simulator
{
/// Simulated devices on the network. Main thread only.
class Simulation final
{
public:
    /// Options, queue and stream must outlive the simulation.
    /// @throws Nfx::System::Exception when an address is malformed or the devices' port cannot be bound;
    /// std::runtime_error.
    Simulation(const SimulationOptions& options, RequestQueue& requests, std::ostream& out);

    /// Says Hello, lists the devices and a line "ready", answers requests until the queue is closed, and says Bye.
    void Run();

private:
    struct Participant
    {
        SimulatedDevice Device;
        Nfx::System::Net::IPAddress Address; // that it is known to be able to use
    };

    void Handle(const Request& request);
    void Handle(Participant& participant, const DiscoveryMessage& message, const Request& request);
    static bool Hears(const Participant& participant, const Nfx::System::Net::IPAddress& destination);

    template <class TMessage>
    void Announce();

    /// Sends from the address that the device was given, or from the one before when it is not one of this machine.
    void Send(Participant& participant, const Nfx::System::String& text, const Nfx::System::Net::IPAddress& target);

    bool TrySend(const Nfx::System::String& text,
                 const Nfx::System::Net::IPAddress& from,
                 const Nfx::System::Net::IPAddress& target);

    const SimulationOptions& options;
    RequestQueue& requests;
    std::ostream& out;
    std::vector<Participant> participants;
    DeviceNetwork network;
};
} // namespace Zent::Discovery::Simulator
