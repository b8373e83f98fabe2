#pragma once

#include <cstddef>

namespace Nfx::Os
{
/// Memory that this library allocates and its host frees, by the means that hosts of the platform have.
class IHostMemory
{
public:
    /// Null when there is none.
    virtual void* Allocate(std::size_t size) = 0;

    /// What the host does with it. Null is allowed.
    virtual void Free(void* memory) = 0;

protected:
    IHostMemory() = default;
    ~IHostMemory() = default;
};
} // namespace Nfx::Os
