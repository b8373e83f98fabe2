#include "Text/Colours.h"

namespace Zent::Discovery::Console
{
namespace
{
const char* ParametersOf(Style style)
{
    switch (style)
    {
    case Style::Title:
        return "1";
    case Style::Appeared:
        return "32";
    case Style::Changed:
        return "33";
    case Style::Left:
        return "31";
    case Style::Faint:
        return "2";
    default:
        return "";
    }
}
} // namespace

Colours::Colours(bool enabled)
    : enabled(enabled)
{
}

std::string Colours::Paint(const std::string& text, Style style) const
{
    if (!enabled || style == Style::Plain || text.empty())
    {
        return text;
    }
    return std::string("\x1B[") + ParametersOf(style) + "m" + text + "\x1B[0m";
}
} // namespace Zent::Discovery::Console
