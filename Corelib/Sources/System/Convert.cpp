#include "system/Convert.h"

#include "system/String.h"

#include <cstdio>

namespace Nfx::System
{
String Convert::ToHexadecimal(std::int32_t value)
{
    char text[11];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned int>(value));
    return text;
}
} // namespace Nfx::System
