#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace Zent::Discovery::Page
{
/// Lets in who has the token, and remembers it by a cookie that does not tell it. One thread; reads no clock.
class TokenGate final
{
public:
    using Time = std::chrono::steady_clock::time_point;
    using WallTime = std::chrono::system_clock::time_point;

    enum class GateVerdict
    {
        Right,
        Wrong,
        TooMany // wrong ones of late from that viewer: nothing was compared
    };

    /// Wrong tokens of a viewer, until whose first is that old.
    static constexpr unsigned MaximumWrong = 10;
    static constexpr std::chrono::seconds WrongLasts{60};

    static constexpr std::chrono::days CookieLasts{30};

    /// That are remembered to have been wrong; the one longest ago gives way.
    static constexpr std::size_t MaximumViewers = 1024;

    /// Why a text is too easy to guess for a token; empty when it is not. Bits are counted as if it were chosen by
    /// chance from the kinds of characters that it has.
    static std::string WeaknessOf(std::string_view token);

    explicit TokenGate(std::string token);

    /// viewer is the address that the token came from.
    GateVerdict Judge(const std::string& viewer, std::string_view given, Time now);

    /// Good for CookieLasts, for any start of the program with this token.
    std::string NewCookie(WallTime now) const;

    bool IsCookie(std::string_view value, WallTime now) const;

private:
    struct Failures
    {
        Time First;
        unsigned Count = 0;
    };

    std::string Seal(std::string_view text) const;
    bool IsLocked(const std::string& viewer, Time now);
    void NoteFailure(const std::string& viewer, Time now);

    const std::string token;
    std::map<std::string, Failures> failures; // by viewer
};
} // namespace Zent::Discovery::Page
