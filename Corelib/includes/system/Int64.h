#pragma once

#include "system/Number.h"

#include <cstdint>

namespace Nfx::System
{
/// A signed 64-bit number.
class Int64 final : public Number<Int64, std::int64_t>
{
public:
    using Number::Number;
};
} // namespace Nfx::System
