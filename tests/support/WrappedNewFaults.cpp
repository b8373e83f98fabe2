#include "support/MemoryFaults.h"

#include <cstddef>
#include <new>

// The thread sanitizer has operators of its own that cannot be replaced. The linker sends the program's calls to these
// and lets the second of each pair reach the sanitizer's; those of the C++ library itself stay out of reach.
extern "C"
{
    void* __wrap__Znwm(std::size_t size);
    void* __real__Znwm(std::size_t size);
    void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag);
    void* __real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag);
}

void* __wrap__Znwm(std::size_t size)
{
    if (Tests::MemoryFaults::Strikes())
    {
        throw std::bad_alloc();
    }
    return __real__Znwm(size);
}

void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag)
{
    return Tests::MemoryFaults::Strikes() ? nullptr : __real__ZnwmRKSt9nothrow_t(size, tag);
}
