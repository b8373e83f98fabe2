#pragma once

#include "Os/IThread.h"

namespace Nfx::Os
{
class ThreadW32 final : public IThread
{
public:
    bool Close(ThreadRecord* thread) override;
    ThreadRecord* Create(ThreadRoutine start,
                         void* parameter,
                         std::uint64_t& threadId,
                         std::uint32_t stackSize) override;
    ThreadRecord* CurrentRecord() override;
    std::uint64_t CurrentThreadId() override;
    bool GetPriority(ThreadRecord* thread, std::int32_t& priority) override;
    [[noreturn]] void Exit(std::uint32_t code) override;
    bool Resume(ThreadRecord* thread) override;
    bool SetPriority(ThreadRecord* thread, std::int32_t priority) override;
    void Sleep(std::int32_t milliseconds) override;
    bool Suspend(ThreadRecord* thread) override;
    bool Terminate(ThreadRecord* thread, std::uint32_t exitCode) override;
    bool Wait(ThreadRecord* thread, std::int32_t timeout) override;
    bool Interrupt(ThreadRecord* thread) override;
    void Pause(std::int32_t timeout) override;
    bool SetName(ThreadRecord* thread, const char* name) override;
    bool TakeInterrupt() override;
};
} // namespace Nfx::Os
