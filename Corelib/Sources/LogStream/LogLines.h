#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Nfx::System
{
class Exception;
class String;
} // namespace Nfx::System

namespace Nfx::System::LogStreams
{
class LogStreamChannel;

/// Lines of a log, complete but for the time, which they get at the moment they are written. Mostly it is one line;
/// several stay together in the file. One thread at a time.
class LogLines final
{
public:
    /// A date and a reference time with the bars before, between and behind them.
    static constexpr std::size_t StampLength = 1 + 23 + 1 + 18 + 1;

    /// Adds a line; an error of 0 leaves the error column blank.
    void Add(const LogStreamChannel& channel, char type, std::int32_t error, std::string_view message);

    /// Adds a line with the text of an exception and the place of its throw, and its code in the error column.
    void AddException(const LogStreamChannel& channel, const String& message, const Exception& exception);

    /// Writes the time, StampLength characters, at the front of each line.
    void Stamp(std::string_view stamp);

    std::string_view Text() const noexcept { return text; }

    std::size_t Count() const noexcept { return laterLines.size() + 1; }

private:
    std::string text;
    std::vector<std::size_t> laterLines; // where the second and the following lines begin
};
} // namespace Nfx::System::LogStreams
