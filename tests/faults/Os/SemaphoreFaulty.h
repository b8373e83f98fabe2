#pragma once

#include "Os/ISemaphore.h"

namespace Tests
{
/// The platform's semaphores, which fail as Faults says.
class SemaphoreFaulty final : public Nfx::Os::ISemaphore
{
public:
    explicit SemaphoreFaulty(Nfx::Os::ISemaphore& real)
        : real(real)
    {
    }

    bool Close(Nfx::Os::ObjectHandle semaphore) override;
    bool Create(Nfx::Os::ObjectHandle& semaphore,
                std::int32_t initialCount,
                std::int32_t maximumCount,
                std::string_view name,
                Nfx::Os::CreateStatus& status) override;
    bool Open(Nfx::Os::ObjectHandle& semaphore, std::string_view name) override;
    bool Release(Nfx::Os::ObjectHandle semaphore,
                 std::int32_t count,
                 std::int32_t& previousCount,
                 Nfx::Os::ReleaseStatus& status) override;
    bool Wait(Nfx::Os::ObjectHandle semaphore, std::int32_t timeout) override;

private:
    Nfx::Os::ISemaphore& real;
};
} // namespace Tests
