#include "Doctor/NftRules.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <string>
#include <vector>

namespace Zent::Discovery::Console::Doctor
{
namespace
{
using Words = std::vector<std::string>;

struct Chain
{
    std::string Table; // its family and its name
    std::string Name;
    bool IsOnTheWay = false; // every datagram to this machine passes it
    bool DropsTheRest = false;
    std::vector<Words> Rules;
};

/// What may become of the datagram. Several are possible while conditions are unknown.
struct Fates
{
    bool Accepted = false;
    bool Dropped = false;
    bool GoesOn = false;   // to the next rule
    bool Returned = false; // to where its chain was called from
};

enum class Match
{
    No,
    Unknown,
    Yes
};

/// The words of a line. A quoted text is one word; braces, commas and semicolons are words of their own.
Words Split(std::string_view line)
{
    Words words;
    bool isQuoted = false;
    bool isOpen = false; // the last word may grow
    for (const char character : line)
    {
        const bool isMark = !isQuoted && std::string_view("{},;").find(character) != std::string_view::npos;
        const bool isBlank = !isQuoted && (character == ' ' || character == '\t' || character == '\r');
        isQuoted ^= character == '"';
        if (isBlank || isMark || !isOpen)
        {
            isOpen = !isBlank && !isMark;
            if (!isBlank)
            {
                words.emplace_back(1, character);
            }
        }
        else
        {
            words.back().push_back(character);
        }
    }
    return words;
}

/// How many more blocks the words open than close.
std::ptrdiff_t Depth(const Words& words)
{
    return std::ranges::count(words, "{") - std::ranges::count(words, "}");
}

/// Reads the chains of the families that IPv4 datagrams pass.
class Reader final
{
public:
    explicit Reader(std::string_view text)
        : rest(text)
    {
    }

    std::vector<Chain> Read()
    {
        std::string table;
        bool isOfInterest = false;
        for (Words words = Next(); !words.empty(); words = Next())
        {
            if (words[0] == "table" && words.size() > 2)
            {
                table = words[1] + " " + words[2];
                isOfInterest = words[1] == "ip" || words[1] == "inet";
            }
            else if (words[0] == "chain" && words.size() > 1)
            {
                Chain chain = ReadChain(table, words[1]);
                if (isOfInterest)
                {
                    chains.push_back(std::move(chain));
                }
            }
            else if (words.back() == "{") // sets and the like
            {
                Skip(Depth(words));
            }
        }
        return std::move(chains);
    }

private:
    /// The next line with anything on it; empty at the end.
    Words Next()
    {
        Words words;
        while (words.empty() && !rest.empty())
        {
            const std::size_t end = std::min(rest.find('\n'), rest.size());
            words = Split(rest.substr(0, end));
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        return words;
    }

    void Skip(std::ptrdiff_t depth)
    {
        while (depth > 0)
        {
            const Words words = Next();
            if (words.empty())
            {
                return;
            }
            depth += Depth(words);
        }
    }

    Chain ReadChain(const std::string& table, const std::string& name)
    {
        Chain chain;
        chain.Table = table;
        chain.Name = name;
        for (Words words = Next(); !words.empty() && words[0] != "}"; words = Next())
        {
            while (Depth(words) > 0) // a long set goes on in the next line
            {
                const Words more = Next();
                if (more.empty())
                {
                    break;
                }
                words.insert(words.end(), more.begin(), more.end());
            }
            if (words[0] == "type")
            {
                const auto hook = std::ranges::find(words, "hook");
                const bool hasHook = hook != words.end() && hook + 1 != words.end();
                chain.IsOnTheWay =
                    hasHook && words[1] == "filter" && (*(hook + 1) == "input" || *(hook + 1) == "prerouting");
                chain.DropsTheRest = std::ranges::find(words, "drop") != words.end();
            }
            else
            {
                chain.Rules.push_back(std::move(words));
            }
        }
        return chain;
    }

    std::string_view rest;
    std::vector<Chain> chains;
};

/// Follows the datagram through the rules.
class Follower final
{
public:
    Follower(const std::vector<Chain>& chains, std::uint16_t port)
        : chains(chains)
        , port(port)
    {
    }

    Fates Follow(const Chain& chain)
    {
        Fates fates;
        for (const Words& rule : chain.Rules)
        {
            const Fates each = FatesOf(rule, chain);
            fates.Accepted |= each.Accepted;
            fates.Dropped |= each.Dropped;
            fates.Returned |= each.Returned;
            if (!each.GoesOn)
            {
                fates.GoesOn = fates.Returned;
                return fates;
            }
        }
        fates.GoesOn = true;
        return fates;
    }

private:
    Fates FatesOf(const Words& rule, const Chain& chain)
    {
        Match match = Match::Yes;
        for (auto word = rule.begin(); word != rule.end() && match != Match::No;)
        {
            Fates fates;
            if (IsVerdict(word, rule.end(), chain, fates))
            {
                fates.GoesOn |= match == Match::Unknown;
                return fates;
            }
            match = std::min(match, TakeCondition(word, rule.end()));
        }
        return {false, false, true, false};
    }

    using Word = Words::const_iterator;

    /// What the verdict does, if the word is one.
    bool IsVerdict(Word word, Word end, const Chain& chain, Fates& fates)
    {
        if (*word == "accept")
        {
            fates.Accepted = true;
        }
        else if (*word == "drop" || *word == "reject")
        {
            fates.Dropped = true;
        }
        else if (*word == "return")
        {
            fates.Returned = true;
        }
        else if ((*word == "jump" || *word == "goto") && word + 1 != end)
        {
            const Fates inner = FatesIn(*(word + 1), chain);
            const bool comesBack = *word == "jump";
            fates = {inner.Accepted, inner.Dropped, inner.GoesOn && comesBack, inner.GoesOn && !comesBack};
        }
        else if (*word == "vmap" || *word == "queue")
        {
            fates = {true, true, true, false};
        }
        else
        {
            return false;
        }
        return true;
    }

    /// Each chain is followed once, however many rules jump there. One that is on its way to itself stays unknown.
    Fates FatesIn(const std::string& name, const Chain& from)
    {
        constexpr Fates Unknown{true, true, true, false};
        const auto found = std::ranges::find_if(
            chains, [&](const Chain& chain) { return chain.Name == name && chain.Table == from.Table; });
        if (found == chains.end())
        {
            return Unknown;
        }
        const auto [place, isNew] = known.emplace(&*found, Unknown);
        if (isNew)
        {
            place->second = Follow(*found);
        }
        return place->second;
    }

    /// Takes the words of one condition or statement, and says whether the datagram meets it.
    Match TakeCondition(Word& word, Word end) const
    {
        const std::string& name = *word++;
        if (name == "counter" || name == "packets" || name == "bytes" || name == "log" || name == "comment")
        {
            word += name == "counter" || name == "log" || word == end ? 0 : 1;
            return Match::Yes;
        }
        if (name == "prefix" || name == "level" || name == "flags" || name == "group") // of log
        {
            word += word == end ? 0 : 1;
            return Match::Yes;
        }
        const std::string field = word == end ? "" : *word;
        if ((name == "udp" || name == "th") && field == "dport")
        {
            return TakeValues(++word, end, [this](const std::string& value) { return IsPort(value); });
        }
        if (name == "meta" && field == "l4proto")
        {
            return TakeValues(++word, end, [](const std::string& value) { return value == "udp" || value == "17"; });
        }
        if (name == "ip" && field == "protocol")
        {
            return TakeValues(++word, end, [](const std::string& value) { return value == "udp" || value == "17"; });
        }
        if (name == "ct" && field == "state") // nothing was sent to the device alone, so its answer is new
        {
            return TakeValues(++word, end, [](const std::string& value) { return value == "new"; });
        }
        if (name == "iif" || name == "iifname")
        {
            Word start = word;
            const Match isLoopback =
                TakeValues(word, end, [](const std::string& value) { return value == "lo" || value == "\"lo\""; });
            const bool isNegated = start != end && *start == "!=";
            return isLoopback == (isNegated ? Match::No : Match::Yes) ? Invert(isNegated) : Match::Unknown;
        }
        if (name == "tcp" || name == "icmp" || name == "icmpv6" || name == "ip6" || name == "sctp" || name == "igmp")
        {
            return Match::No;
        }
        return Match::Unknown;
    }

    /// A datagram of a device never comes over loopback: a rule for it does not match, one for all others does.
    static Match Invert(bool isNegated) { return isNegated ? Match::Yes : Match::No; }

    bool IsPort(const std::string& text) const
    {
        std::uint16_t first = 0;
        const char* const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, first);
        std::uint16_t last = first;
        if (error != std::errc() || (stop != end && *stop != '-') ||
            (stop != end && std::from_chars(stop + 1, end, last).ptr != end))
        {
            return false;
        }
        return first <= port && port <= last;
    }

    /// Takes a value, a list or a set of values, and says whether one of them matches. A named set is unknown.
    template <class TMatches>
    static Match TakeValues(Word& word, Word end, TMatches&& matches)
    {
        bool isNegated = false;
        for (; word != end && (*word == "!=" || *word == "=="); ++word)
        {
            isNegated = *word == "!=";
        }
        if (word == end || (*word).starts_with('@') || *word == "vmap")
        {
            return Match::Unknown;
        }
        bool isFound = false;
        if (*word == "{")
        {
            for (; word != end && *word != "}"; ++word)
            {
                isFound |= matches(*word);
            }
            word += word == end ? 0 : 1;
        }
        else
        {
            isFound = matches(*word++);
            for (; word != end && *word == "," && word + 1 != end; word += 2)
            {
                isFound |= matches(*(word + 1));
            }
        }
        return isFound != isNegated ? Match::Yes : Match::No;
    }

    const std::vector<Chain>& chains;
    const std::uint16_t port;
    std::map<const Chain*, Fates> known; // of chains that were jumped to
};
} // namespace

FirewallState NftRules::Judge(std::string_view ruleSet, std::uint16_t port)
{
    const std::vector<Chain> chains = Reader(ruleSet).Read();
    Follower follower(chains, port);
    FirewallState state;
    for (const Chain& chain : chains)
    {
        if (!chain.IsOnTheWay)
        {
            continue;
        }
        Fates fates = follower.Follow(chain);
        (chain.DropsTheRest ? fates.Dropped : fates.Accepted) |= fates.GoesOn;
        const FirewallState::Verdicts verdict = !fates.Dropped   ? FirewallState::Verdicts::LetIn
                                                : fates.Accepted ? FirewallState::Verdicts::Unclear
                                                                 : FirewallState::Verdicts::Dropped;
        const bool isWorse =
            state.Verdict == FirewallState::Verdicts::LetIn ||
            (state.Verdict == FirewallState::Verdicts::Unclear && verdict == FirewallState::Verdicts::Dropped);
        if (isWorse && verdict != FirewallState::Verdicts::LetIn)
        {
            const std::string place = "chain " + chain.Name + " of table " + chain.Table;
            state.Verdict = verdict;
            state.Reason =
                "by the rules of " + place +
                (verdict == FirewallState::Verdicts::Dropped ? "" : ", some of whose conditions are unknown here");
            state.Commands = {"sudo nft insert rule " + chain.Table + " " + chain.Name + " udp dport " +
                              std::to_string(port) + " accept"};
        }
    }
    return state;
}
} // namespace Zent::Discovery::Console::Doctor
