#pragma once

#include "system/Interface.h"

#include <cstddef>
#include <cstdint>

namespace Nfx::System
{
class Exception;
class String;
} // namespace Nfx::System

namespace Nfx::System::LogStreams
{
class LogStreamChannel;
class LogStreamLevel;

/// A log of one line per event. All operations may be called from any thread; a line reaches the log whole.
/// Writing never fails for the caller: what cannot be written is counted and reported by the stream itself.
class ILogStream : public Interface
{
public:
    /// Writes a message when the level is let through.
    virtual void Write(const LogStreamChannel& channel, const String& message, const LogStreamLevel& level) = 0;

    /// Writes a message with an exception's text and the place of its throw; counts as Critical.
    virtual void Write(const LogStreamChannel& channel, const String& message, const Exception& exception) = 0;

    /// Writes a message and below it the bytes as hexadecimal, 16 a line, each line led by its offset. The lines stay
    /// together. data may be null when size is 0.
    /// @throws ArgumentNullException when data is null and size is not 0.
    virtual void WriteBytes(const LogStreamChannel& channel,
                            const String& message,
                            const std::uint8_t* data,
                            std::size_t size,
                            const LogStreamLevel& level) = 0;

    /// Writes a message followed by the value in hexadecimal.
    virtual void WriteValue(const LogStreamChannel& channel,
                            const String& message,
                            std::uint64_t value,
                            const LogStreamLevel& level) = 0;

    /// True when a line of this level would be written: lets a caller spare building its text.
    virtual bool IsEnabled(const LogStreamLevel& level) const = 0;

    /// Writes a line that names both levels and goes on with the new one.
    /// @throws ArgumentOutOfRangeException when the level has no name, ObjectClosedException after Close.
    virtual void ChangeLevel(const LogStreamLevel& level) = 0;

    /// Writes the closing line and closes the file; later writes do nothing. May be called again.
    virtual void Close() = 0;
};
} // namespace Nfx::System::LogStreams
