#pragma once

#include <cstddef>

namespace Nfx::Os
{
/// The memory of the process, which this library shares with its host.
class IHostMemory
{
public:
    /// Memory that is handed to the host application, which frees it: with free on POSIX, with CoTaskMemFree on
    /// Windows. Null when there is none.
    virtual void* Allocate(std::size_t size) = 0;

    /// Gives what is free back to the system, as far as the platform can. It holds up other threads that allocate.
    virtual void GiveBack() = 0;

protected:
    IHostMemory() = default;
    ~IHostMemory() = default;
};
} // namespace Nfx::Os
