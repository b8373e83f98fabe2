#pragma once

#include "system/String.h"
#include "system/Threading/EventResetMode.h"
#include "system/Threading/WaitHandle.h"

namespace Nfx::System::Threading
{
/// A signal that threads wait for. Any thread. Names as for Semaphore.
class EventWaitHandle : public WaitHandle
{
public:
    /// The name has at most 128 bytes; an empty one is none. An existing event of that name keeps its state and mode.
    /// @throws ArgumentException when the name is too long, or the mode none of the named ones.
    /// @throws IOException when the platform refuses, also because a semaphore or a mutex has the name.
    EventWaitHandle(Boolean signalled, const EventResetMode& mode, const String& name = String());

    ~EventWaitHandle() override;

    /// @throws InvalidOperationException after Close.
    /// @throws IOException when the platform refuses.
    void Set();

    /// @throws InvalidOperationException after Close.
    /// @throws IOException when the platform refuses.
    void Reset();

private:
    explicit EventWaitHandle(const NewHandle& handle);

    void RequireOpen(std::int32_t line) const;
    bool Wait(std::int32_t timeout) override;
    void CloseHandle() override;
};
} // namespace Nfx::System::Threading
