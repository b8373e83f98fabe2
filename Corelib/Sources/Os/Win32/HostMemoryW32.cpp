#include "Os/Win32/HostMemoryW32.h"

#include "Os/Win32/PlatformW32.h"

#include <objbase.h>

namespace Nfx::Os
{
void* HostMemoryW32::Allocate(std::size_t size)
{
    return CoTaskMemAlloc(size);
}

void HostMemoryW32::GiveBack()
{
    HeapCompact(GetProcessHeap(), 0); // the C library's memory is there, too
}
} // namespace Nfx::Os
