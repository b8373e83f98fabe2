#include "Log.h"

#include <algorithm>

namespace Zent::Discovery::Agent
{
namespace
{
constexpr std::string_view JournalPrefixes[] = {"<3>", "<4>", "<6>"}; // syslog's numbers
constexpr std::string_view PlainPrefixes[] = {"error: ", "warning: ", ""};
} // namespace

Log::Log(std::ostream& out, LogLevel level, bool isJournal)
    : level(level)
    , isJournal(isJournal)
    , out(out)
{
}

std::string Log::Printable(std::string_view text)
{
    std::string line(text);
    std::ranges::replace_if(
        line, [](char each) { return static_cast<unsigned char>(each) < ' ' || each == '\x7F'; }, '?');
    return line;
}

void Log::Write(LogLevel lineLevel, std::string_view text)
{
    if (lineLevel <= level)
    {
        const auto index = static_cast<std::size_t>(lineLevel);
        const Programs::Lock guard(lock);
        out << (isJournal ? JournalPrefixes : PlainPrefixes)[index] << Printable(text) << '\n' << std::flush;
    }
}
} // namespace Zent::Discovery::Agent
