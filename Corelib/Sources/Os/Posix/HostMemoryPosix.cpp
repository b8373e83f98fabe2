#include "Os/Posix/HostMemoryPosix.h"

#include <cstdlib>

namespace Nfx::Os
{
void* HostMemory::Allocate(std::size_t size)
{
    return std::malloc(size);
}

void HostMemory::Free(void* memory)
{
    std::free(memory);
}
} // namespace Nfx::Os
