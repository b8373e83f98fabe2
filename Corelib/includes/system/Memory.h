#pragma once

#include <cstddef>
#include <cstdint>

namespace Nfx::System
{
/// The tracked allocator: counts what is alive, so that a leak shows. Any thread.
class Memory final
{
public:
    Memory() = delete;

    /// Uninitialised memory, released with Free; null when there is none.
    static void* Allocate(std::size_t size, const char* sourceName) noexcept;

    /// Null is allowed.
    static void Free(void* memory) noexcept;

    /// Memory that the host application frees, with free or, on Windows, with CoTaskMemFree. Not counted; null when
    /// there is none.
    static void* AllocateForHost(std::size_t size) noexcept;

    /// Gives memory that is free back to the system instead of keeping it for later: for the moment after much was
    /// needed. Takes milliseconds.
    static void GiveBack() noexcept;

    /// Blocks allocated and not yet freed.
    static std::int64_t LiveCount() noexcept;
};
} // namespace Nfx::System
