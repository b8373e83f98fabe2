#pragma once

#include "system/Number.h"

#include <cstdint>

namespace Nfx::System
{
/// An address or handle held as a number. Its text is hexadecimal and fills the width of a pointer:
/// "0x" and 8 digits on 32-bit builds, 16 digits on 64-bit builds.
class IntPtr final : public Number<IntPtr, std::intptr_t>
{
public:
    using Number::Number;

    explicit IntPtr(const void* pointer) noexcept
        : Number(reinterpret_cast<std::intptr_t>(pointer))
    {
    }

    String ToString() const override;
};
} // namespace Nfx::System
