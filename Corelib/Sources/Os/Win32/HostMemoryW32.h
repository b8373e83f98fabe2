#pragma once

#include "Os/IHostMemory.h"

namespace Nfx::Os
{
/// The COM task memory: hosts free it with CoTaskMemFree.
class HostMemoryW32 final : public IHostMemory
{
public:
    void* Allocate(std::size_t size) override;
    void GiveBack() override;
};
} // namespace Nfx::Os
