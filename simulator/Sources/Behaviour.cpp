#include "Behaviour.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <stdexcept>
#include <string>

namespace Zent::Discovery::Simulator
{
namespace
{
using std::chrono::milliseconds;

[[noreturn]] void Refuse(std::string_view text, const std::string& expected)
{
    throw std::invalid_argument('"' + std::string(text) + "\" is not " + expected);
}

template <class TNumber>
bool TryRead(std::string_view text, TNumber& number)
{
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

double ReadShare(std::string_view text)
{
    double percent = -1;
    if (!text.ends_with('%') || !TryRead(text.substr(0, text.size() - 1), percent) || !(percent >= 0 && percent <= 100))
    {
        Refuse(text, "a share from 0% to 100%");
    }
    return percent / 100;
}

std::uint32_t ReadCount(std::string_view text, std::uint32_t maximum, const std::string& unit)
{
    std::uint32_t count = 0;
    if (!TryRead(text, count) || count > maximum)
    {
        Refuse(text, "a number of " + unit + " from 0 to " + std::to_string(maximum));
    }
    return count;
}

milliseconds ReadMilliseconds(std::string_view text)
{
    return milliseconds(ReadCount(text, 600000, "milliseconds"));
}

milliseconds ReadSeconds(std::string_view text)
{
    constexpr double Maximum = 1e6;
    double seconds = -1;
    if (!TryRead(text, seconds) || !(seconds >= 0 && seconds <= Maximum))
    {
        Refuse(text, "a number of seconds from 0 to 1000000");
    }
    return std::chrono::round<milliseconds>(std::chrono::duration<double>(seconds));
}

std::uint32_t ReadBytes(std::string_view text)
{
    return ReadCount(text, 65507, "bytes");
}

std::uint32_t ReadMegabits(std::string_view text)
{
    return ReadCount(text, 1000000, "Mbit/s");
}

std::uint32_t ReadRate(std::string_view text)
{
    return ReadCount(text, 100000, "datagrams a second");
}

bool ReadSwitch(std::string_view text)
{
    if (text != "on" && text != "off")
    {
        Refuse(text, "on or off");
    }
    return text == "on";
}

template <auto Member, auto Read>
void Take(Behaviour& behaviour, std::string_view value)
{
    behaviour.*Member = Read(value);
}

constexpr Behaviour::Setting AllSettings[] = {
    {"silent", "", "on", "answer nothing", Take<&Behaviour::IsSilent, ReadSwitch>},
    {"by-broadcast", "", "on", "answer by broadcast instead of to the host that asked",
     Take<&Behaviour::AnswersByBroadcast, ReadSwitch>},
    {"delay", "MILLISECONDS", nullptr, "the time from a request to its answer",
     Take<&Behaviour::Delay, ReadMilliseconds>},
    {"spread", "MILLISECONDS", nullptr, "each answer comes up to this much later, by chance",
     Take<&Behaviour::Spread, ReadMilliseconds>},
    {"jitter", "MILLISECONDS", nullptr, "answers are held up to this long on their way, and leave in a burst",
     Take<&Behaviour::Jitter, ReadMilliseconds>},
    {"flood", "RATE", nullptr, "broadcast so many signatures a second that nobody has asked for; 0 is none",
     Take<&Behaviour::FloodRate, ReadRate>},
    {"die", "SECONDS", nullptr, "the devices fall silent for good so long after the start",
     Take<&Behaviour::DiesAfter, ReadSeconds>},
    {"refuse", "SHARE", "100%", "the share of the changes that they refuse; all of them without a value",
     Take<&Behaviour::Refusal, ReadShare>},
    {"reboot", "SECONDS", nullptr, "changes hold after a reboot, which takes so long; 0 is at once",
     Take<&Behaviour::Reboot, ReadSeconds>},
    {"size", "BYTES", nullptr, "pad signatures to this size", Take<&Behaviour::SignatureBytes, ReadBytes>},
    {"speed", "MBIT", nullptr, "the speed of the cable that they all send through; 0 is no limit",
     Take<&Behaviour::MegabitsPerSecond, ReadMegabits>},
    {"loss", "SHARE", nullptr, "the share of what they send that is lost, such as 5%",
     Take<&Behaviour::Loss, ReadShare>},
    {"duplicate", "SHARE", nullptr, "the share that is sent twice", Take<&Behaviour::Duplicate, ReadShare>},
    {"malformed", "SHARE", nullptr, "the share that breaks off before its end", Take<&Behaviour::Malformed, ReadShare>},
    {"oversize", "SHARE", nullptr, "the share that is larger than a host expects",
     Take<&Behaviour::Oversize, ReadShare>},
    {"reorder", "SHARE", "50%", "the share of the answers that later ones overtake; half of them without a value",
     Take<&Behaviour::Reorder, ReadShare>},
};
} // namespace

std::span<const Behaviour::Setting> Behaviour::Settings()
{
    return AllSettings;
}

const Behaviour::Setting* Behaviour::FindSetting(std::string_view name)
{
    const auto* const found =
        std::ranges::find(AllSettings, name, [](const Setting& setting) { return std::string_view(setting.Name); });
    return found == std::end(AllSettings) ? nullptr : found;
}
} // namespace Zent::Discovery::Simulator
