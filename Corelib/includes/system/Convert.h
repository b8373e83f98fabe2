#pragma once

#include <cstdint>

namespace Nfx::System
{
class String;

/// Conversions between texts and numbers in other bases.
class Convert final
{
public:
    Convert() = delete;

    /// "0x" and eight uppercase hexadecimal digits.
    static String ToHexadecimal(std::int32_t value);
};
} // namespace Nfx::System
