#include "FaultPlan.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <string>
#include <utility>

namespace Zent::Discovery::Simulator
{
namespace
{
/// What a chance is for. Values are part of what a seed means.
enum class Purpose : std::uint64_t
{
    Loss = 1,
    Duplicate,
    Malformed,
    Oversize,
    CutPlace,
    Spread,
    Refusal,
    Jitter,
    Reorder
};

/// A step of a generator of the kind that spreads neighbouring numbers over the whole range.
constexpr std::uint64_t Mix(std::uint64_t state, std::uint64_t value)
{
    state += value + 0x9E3779B97F4A7C15u;
    state = (state ^ state >> 30) * 0xBF58476D1CE4E5B9u;
    state = (state ^ state >> 27) * 0x94D049BB133111EBu;
    return state ^ state >> 31;
}

/// Chances of one datagram, each from 0 up to but not including 1.
class Chances final
{
public:
    Chances(std::uint64_t seed, std::uint64_t device, std::uint64_t datagram)
        : state(Mix(Mix(seed, device), datagram))
    {
    }

    double Of(Purpose purpose) const
    {
        constexpr int FractionBits = 53;
        return static_cast<double>(Mix(state, static_cast<std::uint64_t>(purpose)) >> (64 - FractionBits)) /
               static_cast<double>(std::uint64_t{1} << FractionBits);
    }

    bool Hits(Purpose purpose, double share) const { return Of(purpose) < share; }

    std::chrono::microseconds PartOf(Purpose purpose, std::chrono::milliseconds time) const
    {
        return std::chrono::duration_cast<std::chrono::microseconds>(time * Of(purpose));
    }

private:
    const std::uint64_t state;
};

/// The first word, without the blanks around it, and what comes after it.
std::pair<std::string_view, std::string_view> SplitWord(std::string_view text)
{
    static constexpr std::string_view Blanks = " \t";
    const std::size_t begin = std::min(text.find_first_not_of(Blanks), text.size());
    const std::size_t end = std::min(text.find_first_of(Blanks, begin), text.size());
    const std::size_t next = std::min(text.find_first_not_of(Blanks, end), text.size());
    return {text.substr(begin, end - begin), text.substr(next)};
}
} // namespace

FaultPlan::FaultPlan(std::uint64_t seed, std::size_t deviceCount, const Behaviour& behaviour)
    : seed(seed)
    , fates(deviceCount, Fates::Open)
    , behaviour(behaviour)
{
}

const Behaviour& FaultPlan::Current() const
{
    return behaviour;
}

std::optional<std::size_t> FaultPlan::Follow(std::string_view line)
{
    const auto [name, rest] = SplitWord(line);
    const auto [value, more] = SplitWord(rest);
    if (value.empty() || !more.empty())
    {
        throw std::invalid_argument('"' + std::string(line) + "\" is not a name and a value, such as loss 5%");
    }
    if (name == "kill")
    {
        const std::size_t device = ReadDevice(value);
        fates[device] = Fates::Killed;
        reboots.erase(device);
    }
    else if (name == "revive")
    {
        const std::size_t device = ReadDevice(value);
        fates[device] = Fates::Revived;
        reboots.erase(device);
        return device;
    }
    else if (const Behaviour::Setting* const setting = Behaviour::FindSetting(name))
    {
        setting->Take(behaviour, value);
    }
    else
    {
        throw std::invalid_argument('"' + std::string(name) + "\" is not kill, revive or a behaviour of the devices");
    }
    return std::nullopt;
}

bool FaultPlan::IsAlive(std::size_t device, std::chrono::milliseconds sinceStart) const
{
    const auto reboot = reboots.find(device);
    if (reboot != reboots.end() && sinceStart >= reboot->second.Begin)
    {
        return false;
    }
    switch (fates[device])
    {
    case Fates::Killed:
        return false;
    case Fates::Revived:
        return true;
    case Fates::Open:
        break;
    }
    return !behaviour.DiesAfter || sinceStart < *behaviour.DiesAfter;
}

bool FaultPlan::Refuses(std::size_t device, std::uint64_t earlierChanges) const
{
    return Chances(seed, device, earlierChanges).Hits(Purpose::Refusal, behaviour.Refusal);
}

void FaultPlan::Reboot(std::size_t device, std::chrono::milliseconds sinceStart)
{
    reboots.try_emplace(device, Interval{sinceStart + behaviour.Reboot / 2, sinceStart + behaviour.Reboot});
}

std::optional<std::chrono::milliseconds> FaultPlan::NextRebooted() const
{
    const auto next = FirstRebooted();
    return next == reboots.end() ? std::nullopt : std::optional(next->second.End);
}

std::optional<std::size_t> FaultPlan::TakeRebooted(std::chrono::milliseconds sinceStart)
{
    const auto next = FirstRebooted();
    if (next == reboots.end() || next->second.End > sinceStart)
    {
        return std::nullopt;
    }
    const std::size_t device = next->first;
    reboots.erase(next);
    return device;
}

Treatment FaultPlan::Treat(std::size_t device, std::uint64_t earlierDatagrams) const
{
    const Chances chances(seed, device, earlierDatagrams);
    Treatment treatment;
    treatment.Delay = behaviour.Delay + chances.PartOf(Purpose::Spread, behaviour.Spread);
    treatment.HoldUp = chances.PartOf(Purpose::Jitter, behaviour.Jitter);
    treatment.IsOvertaken = chances.Hits(Purpose::Reorder, behaviour.Reorder);
    if (chances.Hits(Purpose::Loss, behaviour.Loss))
    {
        treatment.Copies = 0;
    }
    else if (chances.Hits(Purpose::Duplicate, behaviour.Duplicate))
    {
        treatment.Copies = 2;
    }
    if (chances.Hits(Purpose::Malformed, behaviour.Malformed))
    {
        treatment.Form = Treatment::Forms::Cut;
        treatment.KeptShare = chances.Of(Purpose::CutPlace);
    }
    else if (chances.Hits(Purpose::Oversize, behaviour.Oversize))
    {
        treatment.Form = Treatment::Forms::Padded;
    }
    return treatment;
}

FaultPlan::Reboots::const_iterator FaultPlan::FirstRebooted() const
{
    return std::ranges::min_element(reboots, {}, [](const auto& reboot) { return reboot.second.End; });
}

std::size_t FaultPlan::ReadDevice(std::string_view text) const
{
    std::size_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number < 1 || number > fates.size())
    {
        throw std::invalid_argument('"' + std::string(text) + "\" is not a device's number from 1 to " +
                                    std::to_string(fates.size()));
    }
    return number - 1;
}
} // namespace Zent::Discovery::Simulator
