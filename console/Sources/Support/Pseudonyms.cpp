#include "Support/Pseudonyms.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdio>
#include <optional>

using Zent::Discovery::Inventory::IPv4;
using Zent::Discovery::Inventory::Network;

namespace Zent::Discovery::Console
{
namespace
{
using std::string_view;

constexpr IPv4 ThisMachine = 0x7F000001; // 127.0.0.1
constexpr std::size_t ShortestName = 3;  // shorter ones tell nothing, and are parts of everything

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

char Lower(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool IsWordCharacter(char character)
{
    const char lower = Lower(character);
    return IsDigit(character) || (lower >= 'a' && lower <= 'z');
}

bool IsSameIgnoringCase(string_view left, string_view right)
{
    return std::ranges::equal(left, right, {}, Lower, Lower);
}

std::string LowerCase(string_view text)
{
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), Lower);
    return lower;
}

/// The value of that many hexadecimal digits at the begin of the text; nothing when there are others.
std::optional<unsigned> HexAt(string_view text, std::size_t digits)
{
    unsigned value = 0;
    const char* const begin = text.data();
    if (text.size() < digits || std::from_chars(begin, begin + digits, value, 16).ptr != begin + digits)
    {
        return std::nullopt;
    }
    return value;
}

std::size_t CountBackslashes(string_view text)
{
    return std::min(text.find_first_not_of('\\'), text.size());
}

/// The bytes of the character at the begin of a text.
string_view FirstCharacter(string_view text)
{
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
    {
        ++length;
    }
    return text.substr(0, length);
}

/// As the UTF-16 units that JSON's escapes name; nothing for what is no UTF-8.
std::vector<unsigned> UnitsOf(string_view character)
{
    static constexpr unsigned FirstMasks[] = {0x7F, 0x1F, 0x0F, 0x07};
    if (character.size() > std::size(FirstMasks))
    {
        return {};
    }
    unsigned point = static_cast<unsigned char>(character[0]) & FirstMasks[character.size() - 1];
    for (const char byte : character.substr(1))
    {
        point = point << 6 | (static_cast<unsigned char>(byte) & 0x3F);
    }
    if (point < 0x10000)
    {
        return {point};
    }
    return {0xD800 + ((point - 0x10000) >> 10), 0xDC00 + ((point - 0x10000) & 0x3FF)};
}

/// The length of what is left of an escape behind its backslashes, when it stands for the unit; 0 otherwise.
std::size_t MatchUnit(string_view text, unsigned unit)
{
    static constexpr string_view Letters = "nrtbf/";
    static constexpr string_view Meanings = "\n\r\t\b\f/";
    if (text.starts_with('u'))
    {
        return HexAt(text.substr(1), 4) == unit ? 5 : 0;
    }
    const std::size_t letter = text.empty() ? string_view::npos : Letters.find(text[0]);
    return letter != string_view::npos && static_cast<unsigned char>(Meanings[letter]) == unit ? 1 : 0;
}

/// The length of a character at the begin of the text that is an escape of JSON, whose own backslash has been escaped
/// times - 1 times; 0 for another.
std::size_t MatchEscape(string_view text, string_view character, unsigned times)
{
    const std::string backslashes(std::size_t{1} << (times - 1), '\\');
    std::size_t length = 0;
    for (const unsigned unit : UnitsOf(character))
    {
        const string_view rest = text.substr(length);
        const std::size_t escape = rest.starts_with(backslashes) ? MatchUnit(rest.substr(backslashes.size()), unit) : 0;
        if (escape == 0)
        {
            return 0;
        }
        length += backslashes.size() + escape;
    }
    return length;
}

/// The same for \xHH for each byte, as a terminal shows it.
std::size_t MatchShown(string_view text, string_view character)
{
    std::size_t length = 0;
    for (const char byte : character)
    {
        const string_view rest = text.substr(length);
        if (!rest.starts_with("\\x") || HexAt(rest.substr(2), 2) != static_cast<unsigned char>(byte))
        {
            return 0;
        }
        length += 4;
    }
    return length;
}

/// The length of the character at the begin of a text that was escaped so many times; 0 when it is not there.
std::size_t MatchCharacter(string_view text, string_view character, unsigned times)
{
    std::string literal(character);
    if (character == "\\" || character == "\"")
    {
        literal.insert(0, (std::size_t{1} << times) - 1, '\\');
    }
    if (IsSameIgnoringCase(text.substr(0, literal.size()), literal))
    {
        return literal.size();
    }
    if (!text.starts_with('\\'))
    {
        return 0;
    }
    return times == 0 ? MatchShown(text, character) : MatchEscape(text, character, times);
}

/// The length of the name at the begin of the text, escaped or not; 0 when it is not there.
std::size_t MatchSpelling(string_view text, string_view name)
{
    static constexpr unsigned MostTimes = 3;
    for (unsigned times = 0; times <= MostTimes; ++times)
    {
        std::size_t length = 0;
        for (string_view rest = name; !rest.empty();)
        {
            const string_view character = FirstCharacter(rest);
            const std::size_t match = MatchCharacter(text.substr(length), character, times);
            if (match == 0)
            {
                length = 0;
                break;
            }
            length += match;
            rest.remove_prefix(character.size());
        }
        if (length > 0)
        {
            return length;
        }
    }
    return 0;
}

/// Whether a word may begin there: behind no letter or digit, except those of an escape.
bool CanBegin(string_view text, std::size_t place)
{
    const auto isEscape = [&](std::size_t length) { return place >= length && text[place - length] == '\\'; };
    return place == 0 || !IsWordCharacter(text[place - 1]) ||
           (isEscape(2) && string_view("nrtbf").find(text[place - 1]) != string_view::npos) ||
           (isEscape(4) && text[place - 3] == 'x') || (isEscape(6) && text[place - 5] == 'u');
}

/// The members of JSON documents in a text, as the texts that stand there, escapes included.
class MemberReader final
{
public:
    MemberReader(string_view text, string_view key)
        : text(text)
        , lower(LowerCase(text))
        , key(LowerCase(key))
    {
    }

    /// The next value that is a text, without escapes; nothing at the end.
    std::optional<std::string> Next()
    {
        while ((place = lower.find(key, place)) != std::string::npos)
        {
            place += key.size();
            const std::size_t depth = CountBackslashes(text.substr(place));
            const std::string quote = std::string(depth, '\\') + '"';
            std::size_t at = place;
            if (Skip(at, quote) && Skip(at, ":") && Skip(at, quote))
            {
                const std::size_t end = FindEnd(at, depth);
                place = at;
                return Unescaped(text.substr(at, end - at), depth);
            }
        }
        return std::nullopt;
    }

    std::size_t Place() const { return place; }

private:
    /// Goes on behind that text, and the blanks before it.
    bool Skip(std::size_t& at, string_view expected) const
    {
        at = std::min(text.find_first_not_of(" \t\r\n", at), text.size());
        const bool isThere = text.substr(at).starts_with(expected);
        at += isThere ? expected.size() : 0;
        return isThere;
    }

    /// Where the backslashes and the quotation mark begin that close the value.
    std::size_t FindEnd(std::size_t at, std::size_t depth) const
    {
        while (at < text.size() && text[at] != '"')
        {
            const std::size_t backslashes = CountBackslashes(text.substr(at));
            const std::size_t behind = at + backslashes;
            if (behind < text.size() && text[behind] == '"' && backslashes % (2 * depth + 2) == depth)
            {
                return behind - depth;
            }
            at = behind + (backslashes == 0 || behind < text.size() ? 1 : 0);
        }
        return std::min(at, text.size());
    }

    static std::string Unescaped(string_view value, std::size_t depth)
    {
        std::string result(value);
        for (std::size_t level = 0; level <= depth; level = 2 * level + 1)
        {
            const nlohmann::json read = nlohmann::json::parse('"' + result + '"', nullptr, false);
            if (!read.is_string())
            {
                break;
            }
            result = read.get<std::string>();
        }
        return result;
    }

    const string_view text;
    const std::string lower;
    const std::string key;
    std::size_t place = 0;
};

std::string TextOf(const std::array<std::uint8_t, 6>& mac, char separator)
{
    std::array<char, 18> text;
    std::snprintf(text.data(), text.size(), "%02X%c%02X%c%02X%c%02X%c%02X%c%02X", mac[0], separator, mac[1], separator,
                  mac[2], separator, mac[3], separator, mac[4], separator, mac[5]);
    return text.data();
}

/// Whether the value that begins there belongs to a member whose name ends with Version.
bool IsVersion(string_view text, std::size_t place)
{
    const string_view before = text.substr(0, place);
    const std::size_t end = before.find_last_not_of("\\\": \t");
    return end != string_view::npos && end + 1 < place && before.substr(0, end + 1).ends_with("Version");
}
} // namespace

void Pseudonyms::LearnName(string_view name)
{
    Mac mac;
    IPv4 address = 0;
    if (name.size() < ShortestName || FindMac(name, mac) == name.size() || FindAddress(name, address) == name.size() ||
        !knownNames.insert(LowerCase(name)).second)
    {
        return;
    }
    std::vector<Name>& alike = names[Lower(name[0])];
    const auto place =
        std::ranges::find_if(alike, [&name](const Name& other) { return other.Original.size() < name.size(); });
    alike.insert(place, {std::string(name), ""});
}

void Pseudonyms::LearnNetwork(const Network& network)
{
    if (network.PrefixLength > 0 && network.PrefixLength <= 30)
    {
        networks.emplace(network.PrefixLength, network.Lowest());
    }
}

void Pseudonyms::Learn(string_view text)
{
    LearnHostNames(text);
    LearnNetworks(text);
    for (std::size_t place = 0; place < text.size(); ++place)
    {
        Mac mac;
        IPv4 address = 0;
        if (FindMac(text.substr(place), mac) > 0)
        {
            knownMacs.insert(mac);
        }
        else if (FindAddress(text.substr(place), address) > 0)
        {
            knownAddresses.insert(address);
        }
    }
}

std::string Pseudonyms::Replaced(string_view text)
{
    std::string result;
    for (std::size_t place = 0; place < text.size();)
    {
        Match match = MatchName(text, place);
        if (match.Length == 0)
        {
            match = MatchMac(text.substr(place));
        }
        if (match.Length == 0)
        {
            match = MatchAddress(text, place);
        }
        if (match.Length == 0)
        {
            result += text[place++];
            continue;
        }
        result += match.Text;
        place += match.Length;
    }
    return result;
}

std::string Pseudonyms::Map() const
{
    nlohmann::ordered_json ofNames = nlohmann::ordered_json::object();
    for (const auto& [first, alike] : names)
    {
        for (const Name& name : alike)
        {
            if (!name.Pseudonym.empty())
            {
                ofNames[name.Pseudonym] = name.Original;
            }
        }
    }
    nlohmann::ordered_json ofAddresses = nlohmann::ordered_json::object();
    for (const auto& [original, pseudonym] : addresses)
    {
        ofAddresses[Network::TextOf(pseudonym)] = Network::TextOf(original);
    }
    nlohmann::ordered_json ofMacs = nlohmann::ordered_json::object();
    for (const auto& [original, pseudonym] : macs)
    {
        ofMacs[TextOf(pseudonym, ':')] = TextOf(original, ':');
    }
    const nlohmann::ordered_json map = {{"Names", ofNames}, {"IPAddresses", ofAddresses}, {"MACAddresses", ofMacs}};
    return map.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

std::size_t Pseudonyms::FindMac(string_view text, Mac& address)
{
    static constexpr std::size_t Length = 17;
    if (text.size() < Length || (text[2] != ':' && text[2] != '-'))
    {
        return 0;
    }
    for (std::size_t i = 0; i < address.size(); ++i)
    {
        const std::optional<unsigned> byte = HexAt(text.substr(3 * i), 2);
        if (!byte || (i > 0 && text[3 * i - 1] != text[2]))
        {
            return 0;
        }
        address[i] = static_cast<std::uint8_t>(*byte);
    }
    return Length;
}

std::size_t Pseudonyms::FindAddress(string_view text, IPv4& address)
{
    std::size_t length = 0;
    address = 0;
    for (int octet = 0; octet < 4; ++octet)
    {
        if (octet > 0 && !text.substr(length++).starts_with('.'))
        {
            return 0;
        }
        unsigned value = 0;
        const char* const begin = text.data() + length;
        const char* const stop = std::from_chars(begin, text.data() + text.size(), value).ptr;
        if (stop == begin || stop - begin > 3 || value > 255)
        {
            return 0;
        }
        length += static_cast<std::size_t>(stop - begin);
        address = address << 8 | value;
    }
    return length;
}

void Pseudonyms::LearnHostNames(string_view text)
{
    MemberReader reader(text, "HostName"); // and NewHostName
    while (const std::optional<std::string> name = reader.Next())
    {
        LearnName(*name);
    }
}

void Pseudonyms::LearnNetworks(string_view text)
{
    static constexpr std::size_t Near = 200; // characters; both are members of one object
    MemberReader reader(text, "IPAddress");
    while (const std::optional<std::string> value = reader.Next())
    {
        const std::optional<IPv4> address = Network::ParseAddress(*value);
        const std::optional<std::string> maskText =
            MemberReader(text.substr(reader.Place(), Near), "SubNetMask").Next();
        const std::optional<IPv4> mask = maskText ? Network::ParseAddress(*maskText) : std::nullopt;
        if (address && mask && (~*mask & (~*mask + 1)) == 0) // without gaps
        {
            LearnNetwork({*address, std::countl_one(*mask)});
        }
    }
}

Pseudonyms::Match Pseudonyms::MatchName(string_view text, std::size_t place)
{
    if (text[place] != '\\')
    {
        const auto alike = names.find(Lower(text[place]));
        return alike == names.end() || (IsWordCharacter(text[place]) && !CanBegin(text, place))
                   ? Match()
                   : MatchOneOf(alike->second, text, place);
    }
    for (auto& [first, alike] : names)
    {
        Match match = IsWordCharacter(first) ? Match() : MatchOneOf(alike, text, place);
        if (match.Length > 0)
        {
            return match;
        }
    }
    return {};
}

Pseudonyms::Match Pseudonyms::MatchOneOf(std::vector<Name>& alike, string_view text, std::size_t place)
{
    for (Name& name : alike)
    {
        const std::size_t length = MatchSpelling(text.substr(place), name.Original);
        const std::size_t end = place + length;
        const bool isPart = end < text.size() && IsWordCharacter(text[end]) && IsWordCharacter(name.Original.back());
        if (length > 0 && !isPart)
        {
            if (name.Pseudonym.empty())
            {
                name.Pseudonym = NextName();
            }
            return {length, name.Pseudonym};
        }
    }
    return {};
}

std::string Pseudonyms::NextName()
{
    std::string name;
    do
    {
        name = "name-" + std::to_string(++usedNames);
    } while (knownNames.contains(name));
    return name;
}

Pseudonyms::Match Pseudonyms::MatchMac(string_view text)
{
    Mac address;
    const std::size_t length = FindMac(text, address);
    if (length == 0)
    {
        return {};
    }
    const string_view original = text.substr(0, length);
    const std::string pseudonym = TextOf(PseudonymOf(address), text[2]);
    return {length, original == LowerCase(original) ? LowerCase(pseudonym) : pseudonym};
}

Pseudonyms::Match Pseudonyms::MatchAddress(string_view text, std::size_t place)
{
    IPv4 address = 0;
    const std::size_t length = FindAddress(text.substr(place), address);
    const bool isPart = place > 0 && IsDigit(text[place - 1]);
    return length == 0 || isPart || IsVersion(text, place) ? Match()
                                                           : Match{length, Network::TextOf(PseudonymOf(address))};
}

Network Pseudonyms::NetworkOf(IPv4 address) const
{
    const auto narrowest = std::find_if(networks.rbegin(), networks.rend(), [address](const auto& network) {
        return Network{network.second, network.first}.Contains(address);
    });
    return {address, narrowest == networks.rend() ? 24 : narrowest->first};
}

IPv4 Pseudonyms::PseudonymOf(IPv4 address)
{
    static constexpr IPv4 FirstMulticast = 0xE0000000; // broadcast and masks are above
    const Network network = NetworkOf(address);
    if (address == ThisMachine || address >= FirstMulticast || address >> 24 == 0 || !network.HasHost(address))
    {
        return address;
    }
    const auto [place, isNew] = addresses.try_emplace(address, address);
    if (isNew)
    {
        place->second = UnusedAddress(network, address);
        usedAddresses.insert(place->second);
    }
    return place->second;
}

IPv4 Pseudonyms::UnusedAddress(const Network& network, IPv4 original) const
{
    // In a network without another one left, an original serves as the pseudonym of another.
    for (const bool mayBeKnown : {false, true})
    {
        for (IPv4 address = network.Lowest() + 1; address < network.Highest(); ++address)
        {
            const bool isFree = mayBeKnown ? address != original : !knownAddresses.contains(address);
            if (isFree && address != ThisMachine && !usedAddresses.contains(address))
            {
                return address;
            }
        }
    }
    return original;
}

Pseudonyms::Mac Pseudonyms::PseudonymOf(const Mac& address)
{
    const auto isAll = [&address](std::uint8_t byte) { return std::ranges::count(address, byte) == 6; };
    if (isAll(0) || isAll(0xFF))
    {
        return address;
    }
    const auto [place, isNew] = macs.try_emplace(address, address);
    if (isNew)
    {
        do
        {
            ++usedMacs;
            place->second = {address[0],
                             address[1],
                             address[2],
                             static_cast<std::uint8_t>(usedMacs >> 16),
                             static_cast<std::uint8_t>(usedMacs >> 8),
                             static_cast<std::uint8_t>(usedMacs)};
        } while (knownMacs.contains(place->second));
    }
    return place->second;
}
} // namespace Zent::Discovery::Console
