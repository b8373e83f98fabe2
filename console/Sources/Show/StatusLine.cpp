#include "Show/StatusLine.h"

#include <ostream>

namespace Zent::Discovery::Console
{
StatusLine::StatusLine(std::ostream& stream, bool isTerminal)
    : stream(stream)
    , isTerminal(isTerminal)
{
}

StatusLine::~StatusLine()
{
    Clear();
}

void StatusLine::Show(const std::string& text)
{
    if (isTerminal && text != shown)
    {
        stream << "\r\x1B[K" << text << std::flush;
        shown = text;
    }
}

void StatusLine::Clear()
{
    if (!shown.empty())
    {
        stream << "\r\x1B[K" << std::flush;
        shown.clear();
    }
}
} // namespace Zent::Discovery::Console
