#include "Os/Win32/HostMemoryW32.h"

#include "Os/Win32/PlatformW32.h"

#include <objbase.h>

namespace Nfx::Os
{
void* HostMemory::Allocate(std::size_t size)
{
    return CoTaskMemAlloc(size);
}

void HostMemory::Free(void* memory)
{
    CoTaskMemFree(memory);
}
} // namespace Nfx::Os
