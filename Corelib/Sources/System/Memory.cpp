#include "system/Memory.h"

#include "Os/IHostMemory.h"
#include "Os/IOs.h"

#include <atomic>
#include <cstdlib>

namespace Nfx::System
{
namespace
{
std::atomic<std::int64_t> liveBlocks{0};
}

void* Memory::Allocate(std::size_t size, [[maybe_unused]] const char* sourceName) noexcept
{
    void* const memory = std::malloc(size);
    if (memory != nullptr)
    {
        liveBlocks.fetch_add(1, std::memory_order_relaxed);
    }
    return memory;
}

void Memory::Free(void* memory) noexcept
{
    if (memory != nullptr)
    {
        liveBlocks.fetch_sub(1, std::memory_order_relaxed);
        std::free(memory);
    }
}

void* Memory::AllocateForHost(std::size_t size) noexcept
{
    return Os::Platform().HostMemory().Allocate(size);
}

void Memory::GiveBack() noexcept
{
    Os::Platform().HostMemory().GiveBack();
}

std::int64_t Memory::LiveCount() noexcept
{
    return liveBlocks.load(std::memory_order_relaxed);
}
} // namespace Nfx::System
