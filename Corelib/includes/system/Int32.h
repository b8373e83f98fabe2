#pragma once

#include "system/Number.h"

#include <cstdint>

namespace Nfx::System
{
/// A signed 32-bit number; the type in which framework calls pass numbers.
class Int32 final : public Number<Int32, std::int32_t>
{
public:
    using Number::Number;
};
} // namespace Nfx::System
