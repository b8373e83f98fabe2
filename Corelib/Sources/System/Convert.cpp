#include "system/Convert.h"

#include "system/Byte.h"
#include "system/Exceptions.h"
#include "system/String.h"

#include <charconv>
#include <cstdio>

namespace Nfx::System
{
Byte Convert::ToByte(const String& text, std::int32_t base)
{
    const char* const first = text.CString();
    const char* const last = first + text.Length();
    std::uint8_t value = 0;
    const std::from_chars_result end = std::from_chars(first, last, value, base);
    if (end.ec != std::errc() || end.ptr != last)
    {
        throw Exception(ErrorCodes::InvalidFormat, "no byte : " + text.Quoted(), "Corelib/Sources/System/Convert",
                        __LINE__);
    }
    return value;
}

String Convert::ToHexadecimal(std::int32_t value)
{
    char text[11];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned int>(value));
    return text;
}
} // namespace Nfx::System
