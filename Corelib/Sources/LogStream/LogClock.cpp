#include "LogStream/LogClock.h"

#include "Os/IDateTime.h"
#include "Os/IOs.h"
#include "system/DateTime.h"

#include <algorithm>

namespace Nfx::System::LogStreams
{
namespace
{
constexpr std::size_t DateStart = 1;
constexpr std::size_t DateLength = 23;
constexpr std::size_t RefTimeStart = DateStart + DateLength + 1;
constexpr std::size_t RefTimeLength = 18;
constexpr std::int64_t MicrosecondsPerSecond = 1'000'000;

/// Writes the digits of a value so that they end before end; returns where they begin.
char* WriteDigits(char* end, std::int64_t value, int minimumCount)
{
    for (int count = 0; count < minimumCount || value > 0; ++count)
    {
        *--end = static_cast<char>('0' + value % 10);
        value /= 10;
    }
    return end;
}
} // namespace

LogClock::LogClock(const SmartPointer<ILogStreamRefTime>& refTime)
    : refTime(refTime)
{
    std::fill(columns, columns + LogLines::StampLength, ' ');
    for (const std::size_t bar : {DateStart - 1, RefTimeStart - 1, LogLines::StampLength - 1})
    {
        columns[bar] = '|';
    }
}

std::string_view LogClock::Stamp()
{
    StampDate();
    StampRefTime();
    return {columns, LogLines::StampLength};
}

void LogClock::StampDate()
{
    const std::int64_t now = Os::Platform().DateTime().UtcMicroseconds();
    const std::int64_t second = now / MicrosecondsPerSecond;
    if (second != currentSecond)
    {
        const String text = DateTime::FromUtc(now).ToString();
        text.View().copy(columns + DateStart, DateLength);
        currentSecond = second;
    }
    WriteDigits(columns + DateStart + DateLength, now % MicrosecondsPerSecond / 1000, 3);
}

void LogClock::StampRefTime()
{
    const std::int64_t elapsed = std::clamp<std::int64_t>(refTime->Microseconds(), 0, 99'999'999'999'999'999);
    char* const end = columns + RefTimeStart + RefTimeLength;
    char* const fraction = WriteDigits(end, elapsed % MicrosecondsPerSecond, 6);
    *(fraction - 1) = '.';
    char* const start = WriteDigits(fraction - 1, elapsed / MicrosecondsPerSecond, 1);
    std::fill(columns + RefTimeStart, start, ' ');
}
} // namespace Nfx::System::LogStreams
