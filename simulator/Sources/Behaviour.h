#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace Zent::Discovery::Simulator
{
/// How the devices behave, faults included. What it tells can be changed while they run; a new fault is a member here,
/// a row of Settings, and what FaultPlan makes of it.
struct Behaviour
{
    bool IsSilent = false;
    bool AnswersByBroadcast = false; // instead of to the host that asked
    std::chrono::milliseconds Delay{0};
    std::chrono::milliseconds Spread{0}; // each answer comes up to this much later
    std::chrono::milliseconds Jitter{0}; // and is held up to this long on its way, where nothing overtakes it
    std::optional<std::chrono::milliseconds> DiesAfter;
    std::chrono::milliseconds Reboot{0}; // what changes take to hold; 0 when they hold at once
    double Refusal = 0;                  // the share of the changes that are refused, from 0 to 1
    std::uint32_t SignatureBytes = 0;    // what signatures are padded to
    std::uint32_t MegabitsPerSecond = 0; // of the cable that all devices send through; 0 is no limit
    std::uint32_t FloodRate = 0;         // of signatures that nobody has asked for, a second

    // Shares of the datagrams that the devices send, from 0 to 1.
    double Loss = 0;
    double Duplicate = 0;
    double Malformed = 0;
    double Oversize = 0;
    double Reorder = 0; // of the answers only

    /// The name of one of the members, on the command line and on standard input.
    struct Setting
    {
        const char* Name;
        const char* Unit;  // of the value; empty for a flag, whose values are on and off
        const char* Alone; // the value of the option without one; null when it needs one
        const char* Help;

        /// @throws std::invalid_argument when the text is no such value; nothing is changed then.
        void (*Take)(Behaviour& behaviour, std::string_view value);
    };

    static std::span<const Setting> Settings();

    /// Nothing when there is none of that name.
    static const Setting* FindSetting(std::string_view name);
};
} // namespace Zent::Discovery::Simulator
