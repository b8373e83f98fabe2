#pragma once

#include <cstdint>

namespace Nfx::System
{
class Byte;
class Int32;
class String;

/// Conversions between texts and numbers in other bases.
class Convert final
{
public:
    Convert() = delete;

    /// Reads one or more digits of a base of 2 to 36 that make a value of 0 to 255; no sign, blank or prefix.
    /// @throws Exception with ErrorCodes::InvalidFormat for any other text.
    static Byte ToByte(const String& text, std::int32_t base);

    /// "0x" and eight uppercase hexadecimal digits.
    static String ToHexadecimal(std::int32_t value);
};
} // namespace Nfx::System
