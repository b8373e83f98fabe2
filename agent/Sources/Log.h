#pragma once

#include "Programs/Mutex.h"

#include <ostream>
#include <string>
#include <string_view>

namespace Zent::Discovery::Agent
{
/// What the agent tells whoever runs it: lines on standard output, with priorities where the journal reads them. Any
/// thread.
class Log final
{
public:
    enum class LogLevel
    {
        Error,
        Warning,
        Info
    };

    /// Lines beyond the level are left out. out must outlive the object.
    Log(std::ostream& out, LogLevel level, bool isJournal);

    void Error(std::string_view text) { Write(LogLevel::Error, text); }

    void Warning(std::string_view text) { Write(LogLevel::Warning, text); }

    void Info(std::string_view text) { Write(LogLevel::Info, text); }

    /// Without control characters: devices and clients of the broker choose texts that come into a line.
    static std::string Printable(std::string_view text);

private:
    void Write(LogLevel lineLevel, std::string_view text);

    const LogLevel level;
    const bool isJournal;
    Programs::Mutex lock;
    std::ostream& out NFX_GUARDED_BY(lock);
};
} // namespace Zent::Discovery::Agent
