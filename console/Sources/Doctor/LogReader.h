#pragma once

#include "Doctor/Observations.h"

#include <iosfwd>

namespace Zent::Discovery::Console::Doctor
{
/// Reads the library's log, whose lines the documentation of the log promises.
class LogReader final
{
public:
    LogReader() = delete;

    /// What the last use of the library that the log tells of has dropped: all since its "Start Log". How much a log of
    /// a lower level tells is less: versions need Standard, senders and the refused priority
    /// Debug.
    static LogSummary Read(std::istream& log);
};
} // namespace Zent::Discovery::Console::Doctor
