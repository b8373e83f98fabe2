#include "CallFailure.h"

#include <cstdio>

namespace Zent::Discovery::Console
{
std::string CallFailure::CodeText(int code)
{
    if (code >= 0)
    {
        return "code " + std::to_string(code);
    }
    char text[24];
    const int length = std::snprintf(text, sizeof(text), "code 0x%08X", static_cast<unsigned>(code));
    return {text, static_cast<std::size_t>(length)};
}
} // namespace Zent::Discovery::Console
