#include "Os/Posix/ThreadPosix.h"

#include "Os/Posix/ThreadBlockPosix.h"

#include <cerrno>
#include <ctime>
#include <new>

namespace Nfx::Os
{
namespace
{
// Nobody ever signals it: what a pause waits for is its end.
class Nothing final : public WaitablePosix
{
protected:
    bool TryTake() override { return false; }
};

ThreadBlockPosix& BlockOf(const ThreadRecord* thread) noexcept
{
    return ThreadBlockPosix::Of(*thread);
}
} // namespace

bool ThreadPosix::Close(ThreadRecord* thread)
{
    if (thread == nullptr)
    {
        return false;
    }
    ThreadBlockPosix& block = BlockOf(thread);
    block.Detach();
    if (ThreadTable::Drop(*thread))
    {
        delete &block;
        ThreadTable::PutBack(*thread);
    }
    return true;
}

ThreadRecord* ThreadPosix::Create(ThreadRoutine start,
                                  void* parameter,
                                  std::uint64_t& threadId,
                                  std::uint32_t stackSize)
{
    ThreadRecord* const record = ThreadTable::Take(start, parameter);
    if (record == nullptr)
    {
        return nullptr;
    }
    ThreadBlockPosix* const block = new (std::nothrow) ThreadBlockPosix(*record);
    record->Handle.store(block, std::memory_order_relaxed);
    if (block == nullptr || !block->Start(stackSize, threadId))
    {
        delete block;
        ThreadTable::DropUseOfThread(*record);
        ThreadTable::Drop(*record);
        ThreadTable::PutBack(*record);
        return nullptr;
    }
    return record;
}

ThreadRecord* ThreadPosix::CurrentRecord()
{
    const void* const handleOfTheCurrentThread = reinterpret_cast<const void*>(std::intptr_t{-2}); // in any thread
    return ThreadTable::Find(handleOfTheCurrentThread);
}

std::uint64_t ThreadPosix::CurrentThreadId()
{
    static constinit thread_local pid_t id = 0; // asked once: locks want it at every entry
    if (id == 0)
    {
        id = gettid();
    }
    return static_cast<std::uint64_t>(id);
}

bool ThreadPosix::GetPriority(ThreadRecord* thread, std::int32_t& priority)
{
    priority = FromPlatformPriority(BlockOf(thread).GetPriority());
    return true;
}

void ThreadPosix::Exit(std::uint32_t)
{
    pthread_exit(nullptr);
}

bool ThreadPosix::Resume(ThreadRecord* thread)
{
    return BlockOf(thread).Resume();
}

bool ThreadPosix::SetPriority(ThreadRecord* thread, std::int32_t priority)
{
    return BlockOf(thread).SetPriority(ToPlatformPriority(priority));
}

void ThreadPosix::Sleep(std::int32_t milliseconds)
{
    if (milliseconds < 0)
    {
        return;
    }
    timespec left = {milliseconds / 1000, milliseconds % 1000 * 1'000'000L};
    while (nanosleep(&left, &left) != 0 && errno == EINTR)
    {
        // goes on with what is left
    }
}

bool ThreadPosix::Suspend(ThreadRecord* thread)
{
    return BlockOf(thread).Suspend();
}

bool ThreadPosix::Terminate(ThreadRecord* thread, std::uint32_t)
{
    BlockOf(thread).Interrupt();
    return true;
}

bool ThreadPosix::Wait(ThreadRecord* thread, std::int32_t timeout)
{
    return BlockOf(thread).Join(timeout);
}

bool ThreadPosix::Interrupt(ThreadRecord* thread)
{
    BlockOf(thread).Interrupt();
    return true;
}

void ThreadPosix::Pause(std::int32_t timeout)
{
    Nothing nothing;
    nothing.Wait(timeout);
}

bool ThreadPosix::SetName(ThreadRecord* thread, const char* name)
{
    return BlockOf(thread).SetName(name);
}

bool ThreadPosix::TakeInterrupt()
{
    ThreadBlockPosix* const self = ThreadBlockPosix::Current();
    return self != nullptr && self->Record().Interrupted.exchange(false);
}
} // namespace Nfx::Os
