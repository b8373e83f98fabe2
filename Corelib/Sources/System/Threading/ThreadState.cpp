#include "system/Threading/ThreadState.h"

#include <string_view>

namespace Nfx::System::Threading
{
namespace
{
constexpr std::string_view Separator = ", ";
}

String ThreadState::ToString() const
{
    String text;
    std::int32_t unnamed = *this;
    for (const EnumName& row : Names)
    {
        if ((unnamed & row.Value) != 0)
        {
            text.Append(text.IsEmpty() ? std::string_view() : Separator).Append(std::string_view(row.Name));
            unnamed &= ~row.Value;
        }
    }
    return unnamed != 0 || text.IsEmpty() ? Enum::ToString() : text;
}

ThreadState ThreadState::Parse(const String& text)
{
    std::int32_t value = 0;
    std::string_view rest = text.View();
    for (std::size_t end = rest.find(Separator); end != std::string_view::npos; end = rest.find(Separator))
    {
        value |= Enum::Parse(String(rest.substr(0, end)));
        rest.remove_prefix(end + Separator.size());
    }
    return value | Enum::Parse(String(rest));
}
} // namespace Nfx::System::Threading
