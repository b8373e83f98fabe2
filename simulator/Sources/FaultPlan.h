#pragma once

#include "Behaviour.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Simulator
{
/// What happens to one datagram of a device.
struct Treatment
{
    enum class Forms
    {
        Whole,
        Cut,   // after KeptShare of its bytes
        Padded // beyond what a host's first receive buffer holds
    };

    std::chrono::microseconds Delay{0};  // from the request
    std::chrono::microseconds HoldUp{0}; // on its way, behind which others wait
    bool IsOvertaken = false;            // by those that leave soon after it
    unsigned Copies = 1;                 // 0 when it is lost
    Forms Form = Forms::Whole;
    double KeptShare = 1;
};

/// Decides what goes wrong, and when. Chance comes from the seed, the device's number and how many datagrams the device
/// has sent before; so the same requests get the same answers, and a larger share loses what a smaller one did and
/// more. It has no clock: times are passed in. Main thread only.
class FaultPlan final
{
public:
    FaultPlan(std::uint64_t seed, std::size_t deviceCount, const Behaviour& behaviour);

    const Behaviour& Current() const;

    /// Follows a line such as "loss 5%", a setting and its value, or "kill 17", where the first device has the
    /// number 1. Blanks beside the two words are no part of them. Returns the index of the device that it has revived,
    /// if any.
    /// @throws std::invalid_argument with what is wrong with the line, which then changes nothing.
    std::optional<std::size_t> Follow(std::string_view line);

    /// Whether the device works, so long after the start.
    bool IsAlive(std::size_t device, std::chrono::milliseconds sinceStart) const;

    /// Whether the device refuses the change that it is told to make after that many earlier ones.
    bool Refuses(std::size_t device, std::uint64_t earlierChanges) const;

    /// Lets the device reboot, unless it is about to: it works on for half of the time that a reboot takes, and is
    /// silent for the rest.
    void Reboot(std::size_t device, std::chrono::milliseconds sinceStart);

    /// When the next device has rebooted; nothing when none is about to.
    std::optional<std::chrono::milliseconds> NextRebooted() const;

    /// Takes the first of the devices that have rebooted by now, if there is one.
    std::optional<std::size_t> TakeRebooted(std::chrono::milliseconds sinceStart);

    /// What happens to the datagram that the device sends after that many earlier ones.
    Treatment Treat(std::size_t device, std::uint64_t earlierDatagrams) const;

private:
    enum class Fates
    {
        Open,
        Killed,
        Revived // and outlasts the time when all die
    };

    struct Interval
    {
        std::chrono::milliseconds Begin;
        std::chrono::milliseconds End;
    };

    using Reboots = std::map<std::size_t, Interval>; // by device; the time without a word

    Reboots::const_iterator FirstRebooted() const;
    std::size_t ReadDevice(std::string_view text) const;

    const std::uint64_t seed;
    std::vector<Fates> fates; // by device
    Reboots reboots;
    Behaviour behaviour;
};
} // namespace Zent::Discovery::Simulator
