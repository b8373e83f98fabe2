#pragma once

#include "system/Object.h"
#include "system/Threading/ThreadAnnotations.h"

#include <memory>

namespace Nfx::System::Threading
{
/// A lock that its owner may enter again; it is free after as many exits. Any thread; lock it through Lock.
class NFX_CAPABILITY("monitor") Monitor final : public Object
{
public:
    class MonitorData;

    /// @throws OutOfMemoryException when the platform has no lock to give.
    Monitor();
    ~Monitor() override;
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    /// Waits without limit until this thread owns the lock.
    void Enter() NFX_ACQUIRE();

    /// @throws InvalidOperationException when this thread is not the owner.
    void Exit() NFX_RELEASE();

private:
    std::unique_ptr<MonitorData> data; // constant after construction
};
} // namespace Nfx::System::Threading
