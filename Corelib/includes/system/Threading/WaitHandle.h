#pragma once

#include "system/Boolean.h"
#include "system/Int32.h"
#include "system/IntPtr.h"
#include "system/Object.h"

namespace Nfx::System::Threading
{
/// An object of the platform that threads can wait for. Any thread may use it, but Close and the destructor want to be
/// alone with it.
///
/// A wait that blocks shows as WaitSleepJoin in the thread's state and ends with ThreadInterruptedException when
/// Thread::Interrupt was called for the thread. Threads that were not started by Thread cannot be interrupted.
class WaitHandle : public Object
{
public:
    /// Stands for "no object".
    static const IntPtr& InvalidHandle();

    /// Classes close their object themselves: here it is too late to know its kind.
    ~WaitHandle() override = default;
    WaitHandle(const WaitHandle&) = delete;
    WaitHandle& operator=(const WaitHandle&) = delete;

    /// Waits without limit until the object is signalled; the result is true.
    /// @throws as WaitOne with a timeout.
    Boolean WaitOne();

    /// Whether the object was signalled within the timeout: milliseconds, 0 only looks, -1 waits without limit.
    /// @throws Exception with ErrorCodes::InvalidHandle after Close.
    /// @throws Exception with ErrorCodes::InvalidParameterValue when the timeout is below -1.
    /// @throws ThreadInterruptedException when the thread was interrupted.
    /// @throws IOException when the platform cannot wait for the object; a limited wait then just ends.
    Boolean WaitOne(Int32 timeout);

    /// Lets go of the object; operations are refused from then on. Closing again does nothing.
    void Close();

    IntPtr GetHandle() const;

protected:
    /// A handle that the platform has just given out.
    struct NewHandle
    {
        IntPtr Handle;
    };

    explicit WaitHandle(const NewHandle& handle);

    bool IsClosed() const;

private:
    /// The platform's wait for this kind of object.
    virtual bool Wait(std::int32_t timeout) = 0;

    /// Gives the handle back to the platform.
    virtual void CloseHandle() = 0;

    IntPtr handle; // changed by Close only
};
} // namespace Nfx::System::Threading
