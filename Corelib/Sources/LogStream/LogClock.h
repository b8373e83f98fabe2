#pragma once

#include "LogStream/LogLines.h"
#include "system/LogStreams/ILogStreamRefTime.h"
#include "system/SmartPointer.h"

#include <cstdint>
#include <limits>
#include <string_view>

namespace Nfx::System::LogStreams
{
/// Writes the time columns. The text of a second is made once and serves all its lines. One thread at a time.
class LogClock final
{
public:
    explicit LogClock(const SmartPointer<ILogStreamRefTime>& refTime);

    /// The columns for now; valid until the next call.
    std::string_view Stamp();

private:
    void StampDate();
    void StampRefTime();

    const SmartPointer<ILogStreamRefTime> refTime;
    std::int64_t currentSecond = std::numeric_limits<std::int64_t>::min(); // whose text stands in the date column
    char columns[LogLines::StampLength];
};
} // namespace Nfx::System::LogStreams
