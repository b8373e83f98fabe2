#include "system/LogStreams/LogStream.h"

#include "LogStream/LogFile.h"
#include "LogStream/LogLines.h"
#include "Os/IDateTime.h"
#include "Os/IOs.h"
#include "system/Exceptions.h"
#include "system/IO/Path.h"
#include "system/LogStreams/LogStreamChannel.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <limits>
#include <new>

using Nfx::System::Threading::Lock;

namespace Nfx::System::LogStreams
{
namespace
{
const char SourceName[] = "Corelib/Sources/LogStream/LogStream";

constexpr std::int32_t NothingWritten = std::numeric_limits<std::int32_t>::min(); // below every level
constexpr std::size_t BytesPerLine = 16;

class TimeSinceOpening final : public ILogStreamRefTime
{
public:
    std::int64_t Microseconds() const override { return Os::Platform().DateTime().MonotonicMicroseconds() - start; }

private:
    const std::int64_t start = Os::Platform().DateTime().MonotonicMicroseconds();
};

/// The first letter of the level's name.
char TypeOf(const LogStreamLevel& level)
{
    const auto* const row = std::find_if(std::begin(LogStreamLevel::Names), std::end(LogStreamLevel::Names),
                                         [&level](const EnumName& name) { return name.Value == level; });
    return row == std::end(LogStreamLevel::Names) ? ' ' : *row->Name;
}

std::int32_t HighestLevelOf(const LogStreamLevel& level)
{
    return level == LogStreamLevel::None ? NothingWritten : std::int32_t{level};
}

const LogStreamLevel& Checked(const LogStreamLevel& level)
{
    if (!LogStreamLevel::IsDefined(level))
    {
        throw ArgumentOutOfRangeException(SourceName, __LINE__);
    }
    return level;
}

const SmartPointer<ILogStreamRefTime>& NotNull(const SmartPointer<ILogStreamRefTime>& refTime)
{
    if (refTime.IsNull())
    {
        throw ArgumentNullException(SourceName, __LINE__);
    }
    return refTime;
}

/// An offset, the bytes in two digits each, and those that can be printed once more as characters.
std::string HexadecimalLine(const std::uint8_t* bytes, std::size_t count, std::size_t offset)
{
    char part[16];
    std::snprintf(part, sizeof part, "%08X ", static_cast<unsigned>(offset));
    std::string line = part;
    std::string characters;
    for (std::size_t i = 0; i < BytesPerLine; ++i)
    {
        if (i >= count)
        {
            line += "   ";
            continue;
        }
        std::snprintf(part, sizeof part, " %02X", unsigned{bytes[i]});
        line += part;
        characters += bytes[i] >= 32 && bytes[i] < 127 ? static_cast<char>(bytes[i]) : '.';
    }
    return line + "  " + characters;
}
} // namespace

LogStream::LogStream(const String& filePath, const LogStreamLevel& level, const LogStreamHeader& header)
    : LogStream(filePath, level, header, SmartPointer<ILogStreamRefTime>(new TimeSinceOpening()))
{
}

LogStream::LogStream(const String& filePath,
                     const LogStreamLevel& level,
                     const LogStreamHeader& header,
                     const SmartPointer<ILogStreamRefTime>& refTime)
    : file(std::make_unique<LogFile>(IO::Path::GetFullPath(filePath),
                                     Checked(level),
                                     header,
                                     NotNull(refTime),
                                     std::int64_t{DefaultMaximumSize} * 1024))
    , highestLevel(HighestLevelOf(level))
{
}

LogStream::~LogStream()
{
    Close();
}

void LogStream::Write(const LogStreamChannel& channel, const String& message, const LogStreamLevel& level)
{
    if (IsEnabled(level))
    {
        WriteLines([&](LogLines& lines) { lines.Add(channel, TypeOf(level), 0, message.View()); });
    }
}

void LogStream::Write(const LogStreamChannel& channel, const String& message, const Exception& exception)
{
    if (IsEnabled(LogStreamLevel::Critical))
    {
        WriteLines([&](LogLines& lines) { lines.AddException(channel, message, exception); });
    }
}

void LogStream::WriteBytes(const LogStreamChannel& channel,
                           const String& message,
                           const std::uint8_t* data,
                           std::size_t size,
                           const LogStreamLevel& level)
{
    if (data == nullptr && size > 0)
    {
        throw ArgumentNullException(SourceName, __LINE__);
    }
    if (!IsEnabled(level))
    {
        return;
    }
    WriteLines([&](LogLines& lines) {
        lines.Add(channel, TypeOf(level), 0, message.View());
        for (std::size_t offset = 0; offset < size; offset += BytesPerLine)
        {
            const std::size_t count = std::min(BytesPerLine, size - offset);
            lines.Add(channel, TypeOf(level), 0, HexadecimalLine(data + offset, count, offset));
        }
    });
}

void LogStream::WriteValue(const LogStreamChannel& channel,
                           const String& message,
                           std::uint64_t value,
                           const LogStreamLevel& level)
{
    if (!IsEnabled(level))
    {
        return;
    }
    WriteLines([&](LogLines& lines) {
        char digits[24];
        std::snprintf(digits, sizeof digits, " 0x%016llX", static_cast<unsigned long long>(value));
        lines.Add(channel, TypeOf(level), 0, (message + digits).View());
    });
}

void LogStream::ChangeLevel(const LogStreamLevel& level)
{
    Checked(level);
    const Lock guard(lock);
    if (!file->IsOpen())
    {
        throw ObjectClosedException(SourceName, __LINE__);
    }
    LogLines lines;
    const String text =
        "--------- Change log stream level from " + file->Level().ToString() + " to " + level.ToString() + " ---------";
    lines.Add(LogStreamChannel("Level"), 'C', 0, text.View());
    file->Append(lines);
    file->SetLevel(level);
    highestLevel.store(HighestLevelOf(level), std::memory_order_relaxed);
}

void LogStream::Close()
{
    const Lock guard(lock);
    if (file->IsOpen())
    {
        highestLevel.store(NothingWritten, std::memory_order_relaxed);
        file->Close();
    }
}

void LogStream::SetFileCount(std::int32_t count)
{
    const Lock guard(lock);
    file->SetFileCount(std::max(count, 1));
}

void LogStream::SetMaximumSize(std::int32_t size)
{
    const Lock guard(lock);
    file->SetMaximumSize(std::int64_t{std::max(size, 1)} * 1024);
}

template <class TAdd>
void LogStream::WriteLines(const TAdd& add)
{
    LogLines lines;
    try
    {
        add(lines); // without the lock: most of the work is here
        const Lock guard(lock);
        file->Append(lines);
    }
    catch (const std::bad_alloc&)
    {
        const Lock guard(lock);
        file->CountLost(std::max<std::size_t>(lines.Count(), 1));
    }
}
} // namespace Nfx::System::LogStreams
