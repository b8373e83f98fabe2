#pragma once

#include "system/Number.h"

#include <cstdint>

namespace Nfx::System
{
/// An unsigned 32-bit number.
class UInt32 final : public Number<UInt32, std::uint32_t>
{
public:
    using Number::Number;
};
} // namespace Nfx::System
