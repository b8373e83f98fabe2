#pragma once

#include "system/Number.h"

namespace Nfx::System
{
/// A double precision number; its text is the shortest that reads back to the same value.
class Double final : public Number<Double, double>
{
public:
    using Number::Number;
};
} // namespace Nfx::System
