#pragma once

#include "Os/ISemaphore.h"

namespace Nfx::Os
{
class SemaphorePosix final : public ISemaphore
{
public:
    bool Close(ObjectHandle semaphore) override;
    bool Create(ObjectHandle& semaphore,
                std::int32_t initialCount,
                std::int32_t maximumCount,
                std::string_view name,
                CreateStatus& status) override;
    bool Open(ObjectHandle& semaphore, std::string_view name) override;
    bool Release(ObjectHandle semaphore,
                 std::int32_t count,
                 std::int32_t& previousCount,
                 ReleaseStatus& status) override;
    bool Wait(ObjectHandle semaphore, std::int32_t timeout) override;
};
} // namespace Nfx::Os
