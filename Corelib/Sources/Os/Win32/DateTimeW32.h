#pragma once

#include "Os/IDateTime.h"

namespace Nfx::Os
{
class DateTimeW32 final : public IDateTime
{
public:
    std::int64_t UtcMicroseconds() override;
    std::int64_t MonotonicMicroseconds() override;
    Calendar ToLocal(std::int64_t utcSeconds) override;
};
} // namespace Nfx::Os
