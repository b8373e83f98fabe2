#pragma once

#include <cstddef>

namespace Nfx::Os
{
/// The memory of the process, which this library shares with its host.
class IHostMemory
{
public:
    /// Memory that the host frees, by the means that hosts of the platform have. Null when there is none.
    virtual void* Allocate(std::size_t size) = 0;

    /// Gives what is free back to the system, as far as the platform can. It holds up other threads that allocate.
    virtual void GiveBack() = 0;

protected:
    IHostMemory() = default;
    ~IHostMemory() = default;
};
} // namespace Nfx::Os
