#pragma once

#include <cstddef>
#include <cstdint>

namespace Nfx::Os
{
/// The platform's handle of a semaphore, a mutex or an event.
using ObjectHandle = std::intptr_t;

/// In bytes.
inline constexpr std::size_t LongestObjectName = 128;

enum class CreateStatus : std::int32_t
{
    Created = 0,
    NameTooLong = 1,
    Failed = 2,
    Existed = 3 // the handle is of the object that has this name already
};

enum class ReleaseStatus : std::int32_t
{
    Released = 0,
    Refused = 1, // the semaphore's count would pass its maximum; the mutex is not the caller's
    Failed = 2
};
} // namespace Nfx::Os
