#include "Os/Posix/HostMemoryPosix.h"

#include <cstdlib>

namespace Nfx::Os
{
void* HostMemoryPosix::Allocate(std::size_t size)
{
    return std::malloc(size);
}

void HostMemoryPosix::Free(void* memory)
{
    std::free(memory);
}
} // namespace Nfx::Os
