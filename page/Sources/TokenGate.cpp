#include "TokenGate.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <gnutls/crypto.h>
#include <gnutls/gnutls.h>
#include <set>
#include <stdexcept>

namespace Zent::Discovery::Page
{
namespace
{
constexpr unsigned MinimumBits = 128;

/// So few characters of a random token are different once in billions.
constexpr std::size_t MinimumDifferent = 8;

bool IsIn(char each, char first, char last)
{
    return each >= first && each <= last;
}

bool IsHex(char each)
{
    return IsIn(each, '0', '9') || IsIn(each, 'a', 'f') || IsIn(each, 'A', 'F');
}

/// How many characters it may have been chosen from.
unsigned AlphabetOf(std::string_view token)
{
    if (std::ranges::all_of(token, [](char each) { return IsIn(each, '0', '9'); }))
    {
        return 10;
    }
    return std::ranges::all_of(token, IsHex) ? 16 : 64;
}

/// Takes as long wherever they differ.
bool AreEqual(const std::string& one, const std::string& other)
{
    return one.size() == other.size() && gnutls_memcmp(one.data(), other.data(), one.size()) == 0;
}
} // namespace

std::string TokenGate::WeaknessOf(std::string_view token)
{
    if (!std::ranges::all_of(token, [](char each) { return each > ' ' && each < '\x7F'; }))
    {
        return "has characters other than letters, digits and signs";
    }
    const double bits = static_cast<double>(token.size()) * std::log2(AlphabetOf(token));
    if (bits < MinimumBits)
    {
        return "has " + std::to_string(static_cast<unsigned>(bits)) + " bits of " + std::to_string(MinimumBits);
    }
    const bool isVaried = std::set<char>(token.begin(), token.end()).size() >= MinimumDifferent;
    return isVaried ? "" : "repeats itself";
}

TokenGate::TokenGate(std::string token)
    : token(std::move(token))
{
}

TokenGate::GateVerdict TokenGate::Judge(const std::string& viewer, std::string_view given, Time now)
{
    if (IsLocked(viewer, now))
    {
        return GateVerdict::TooMany;
    }
    if (AreEqual(Seal(given), Seal(token)))
    {
        return GateVerdict::Right;
    }
    NoteFailure(viewer, now);
    return GateVerdict::Wrong;
}

bool TokenGate::IsLocked(const std::string& viewer, Time now)
{
    const auto found = failures.find(viewer);
    if (found != failures.end() && now - found->second.First >= WrongLasts)
    {
        failures.erase(found);
        return false;
    }
    return found != failures.end() && found->second.Count >= MaximumWrong;
}

void TokenGate::NoteFailure(const std::string& viewer, Time now)
{
    if (!failures.contains(viewer) && failures.size() >= MaximumViewers)
    {
        failures.erase(std::ranges::min_element(failures, {}, [](const auto& each) { return each.second.First; }));
    }
    Failures& each = failures.emplace(viewer, Failures{now}).first->second;
    ++each.Count;
}

std::string TokenGate::NewCookie(WallTime now) const
{
    const auto end = std::chrono::duration_cast<std::chrono::seconds>((now + CookieLasts).time_since_epoch());
    const std::string text = std::to_string(end.count());
    return text + "." + Seal("cookie until " + text);
}

bool TokenGate::IsCookie(std::string_view value, WallTime now) const
{
    const std::size_t dot = std::min(value.find('.'), value.size());
    const std::string_view text = value.substr(0, dot);
    std::int64_t end = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), end).ptr != text.data() + text.size())
    {
        return false;
    }
    const std::string expected = std::string(text) + "." + Seal("cookie until " + std::string(text));
    return AreEqual(std::string(value), expected) &&
           std::chrono::duration_cast<std::chrono::seconds>(now.time_since_epoch()).count() < end;
}

/// What nobody can make for a text without the token, and which does not tell it, in hexadecimal digits.
std::string TokenGate::Seal(std::string_view text) const
{
    constexpr std::size_t Size = 32;
    std::uint8_t digest[Size];
    if (gnutls_hmac_fast(GNUTLS_MAC_SHA256, token.data(), token.size(), text.data(), text.size(), digest) != 0)
    {
        throw std::runtime_error("the system's library for TLS makes no HMAC");
    }
    std::string hex;
    for (const std::uint8_t each : digest)
    {
        hex += "0123456789abcdef"[each >> 4U];
        hex += "0123456789abcdef"[each & 15U];
    }
    return hex;
}
} // namespace Zent::Discovery::Page
