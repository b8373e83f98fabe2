#pragma once

#include "system/Number.h"

#include <cstdint>

namespace Nfx::System
{
/// An unsigned 8-bit number.
class Byte final : public Number<Byte, std::uint8_t>
{
public:
    using Number::Number;
};
} // namespace Nfx::System
