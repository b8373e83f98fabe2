#include "Fleet/Topics.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Zent::Discovery::Fleet
{
namespace
{
constexpr std::string_view Root = "discovery/v1/";
constexpr std::size_t MaximumTopicBytes = 512;
constexpr std::size_t AddressBytes = 17;

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool IsNameCharacter(char character)
{
    const char lower = static_cast<char>(character | 0x20);
    return IsDigit(character) || (lower >= 'a' && lower <= 'z') || character == '-' || character == '_' ||
           character == '.';
}

std::vector<std::string_view> LevelsOf(std::string_view topic)
{
    std::vector<std::string_view> levels;
    for (;;)
    {
        const std::size_t slash = topic.find('/');
        levels.push_back(topic.substr(0, slash));
        if (slash == std::string_view::npos)
        {
            return levels;
        }
        topic.remove_prefix(slash + 1);
    }
}

/// Pairs of hexadecimal digits between separators, with the letters from that one on.
bool IsAddress(std::string_view text, char separator, char letter)
{
    if (text.size() != AddressBytes)
    {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const char each = text[i];
        const bool fits = i % 3 == 2 ? each == separator : IsDigit(each) || (each >= letter && each <= letter + 5);
        if (!fits)
        {
            return false;
        }
    }
    return true;
}

std::string Translated(std::string_view text, char separator, char from, char to)
{
    std::string result(text);
    for (char& each : result)
    {
        each = each == ':' || each == '-' ? separator : IsDigit(each) ? each : static_cast<char>(each - from + to);
    }
    return result;
}

std::optional<std::size_t> PartOf(std::string_view text)
{
    std::size_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    const bool isWhole = error == std::errc() && stop == end && number > 0 && text.front() != '0';
    return isWhole ? std::optional(number) : std::nullopt;
}
} // namespace

bool DeviceId::Is(std::string_view text)
{
    return IsAddress(text, '-', 'a');
}

std::optional<std::string> DeviceId::FromMAC(std::string_view address)
{
    return IsAddress(address, ':', 'A') ? std::optional(Translated(address, '-', 'A', 'a')) : std::nullopt;
}

std::optional<std::string> DeviceId::ToMAC(std::string_view id)
{
    return Is(id) ? std::optional(Translated(id, ':', 'a', 'A')) : std::nullopt;
}

std::optional<Topic> Topic::Parse(std::string_view text)
{
    using Kind = TopicKind;
    if (text.size() > MaximumTopicBytes || !text.starts_with(Root))
    {
        return std::nullopt;
    }
    const std::vector<std::string_view> levels = LevelsOf(text.substr(Root.size()));
    if (levels.size() < 2 || !SiteTopics::IsName(levels[0]))
    {
        return std::nullopt;
    }
    const std::string_view name = levels[1];
    const std::string site(levels[0]);
    if (levels.size() == 2)
    {
        static constexpr std::pair<std::string_view, Kind> Kinds[] = {{"state", Kind::State},
                                                                      {"manifest", Kind::Manifest},
                                                                      {"events", Kind::Events},
                                                                      {"commands", Kind::Commands}};
        const auto* const found = std::ranges::find(Kinds, name, &std::pair<std::string_view, Kind>::first);
        return found == std::end(Kinds) ? std::nullopt : std::optional(Topic{found->second, site});
    }
    if (levels.size() == 3 && name == "manifest")
    {
        const std::optional<std::size_t> part = PartOf(levels[2]);
        return part ? std::optional(Topic{Kind::Manifest, site, *part}) : std::nullopt;
    }
    if (levels.size() == 3 && name == "devices" && DeviceId::Is(levels[2]))
    {
        return Topic{Kind::Device, site, 0, std::string(levels[2])};
    }
    const bool isReply = levels.size() > 3 && name == "replies" && SiteTopics::IsName(levels[2]) &&
                         text.find_first_of(std::string_view("+#\0", 3)) == std::string_view::npos;
    return isReply ? std::optional(Topic{Kind::Reply, site, 0, "", std::string(levels[2])}) : std::nullopt;
}

bool SiteTopics::IsName(std::string_view site)
{
    return !site.empty() && site.size() <= MaximumNameBytes && std::ranges::all_of(site, IsNameCharacter);
}

SiteTopics::SiteTopics(std::string site)
    : site(std::move(site))
    , root(std::string(Root) + this->site + "/")
{
    if (!IsName(this->site))
    {
        throw std::invalid_argument('"' + this->site + "\" is no name of a site: 1 to " +
                                    std::to_string(MaximumNameBytes) + " letters, digits, '-', '_' and '.'");
    }
}

std::string SiteTopics::AllStates()
{
    return std::string(Root) + "+/state";
}

std::optional<std::string> SiteTopics::ReplyClient(std::string_view topic) const
{
    const std::optional<Topic> parsed = Topic::Parse(topic);
    return parsed && parsed->Kind == Topic::TopicKind::Reply && parsed->Site == site ? std::optional(parsed->Client)
                                                                                     : std::nullopt;
}
} // namespace Zent::Discovery::Fleet
