#pragma once

#include "Os/IHostMemory.h"

namespace Nfx::Os
{
/// The C library's memory: hosts free it with free.
class HostMemoryPosix final : public IHostMemory
{
public:
    void* Allocate(std::size_t size) override;
    void GiveBack() override;
};
} // namespace Nfx::Os
