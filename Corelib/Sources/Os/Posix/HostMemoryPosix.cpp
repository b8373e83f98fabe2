#include "Os/Posix/HostMemoryPosix.h"

#include <cstdlib>
#include <malloc.h>

namespace Nfx::Os
{
void* HostMemoryPosix::Allocate(std::size_t size)
{
    return std::malloc(size);
}

void HostMemoryPosix::GiveBack()
{
    malloc_trim(0);
}
} // namespace Nfx::Os
