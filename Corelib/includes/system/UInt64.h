#pragma once

#include "system/Number.h"

#include <cstdint>

namespace Nfx::System
{
/// An unsigned 64-bit number.
class UInt64 final : public Number<UInt64, std::uint64_t>
{
public:
    using Number::Number;
};
} // namespace Nfx::System
