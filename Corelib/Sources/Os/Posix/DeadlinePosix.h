#pragma once

#include <cstdint>
#include <ctime>

namespace Nfx::Os
{
/// The moment on the given clock that lies so many milliseconds ahead.
timespec DeadlineAfter(clockid_t clock, std::int32_t milliseconds);
} // namespace Nfx::Os
