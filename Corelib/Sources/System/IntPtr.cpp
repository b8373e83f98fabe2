#include "system/IntPtr.h"

#include "system/String.h"

#include <cinttypes>
#include <cstdio>

namespace Nfx::System
{
String IntPtr::ToString() const
{
    char text[2 + 2 * sizeof(std::uintptr_t) + 1];
    std::snprintf(text, sizeof text, "0x%0*" PRIXPTR, static_cast<int>(2 * sizeof(std::uintptr_t)),
                  static_cast<std::uintptr_t>(std::intptr_t{*this}));
    return text;
}
} // namespace Nfx::System
