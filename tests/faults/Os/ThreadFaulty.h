#pragma once

#include "Os/IThread.h"

namespace Tests
{
/// The platform's threads, whose creation fails as Faults says.
class ThreadFaulty final : public Nfx::Os::IThread
{
public:
    explicit ThreadFaulty(Nfx::Os::IThread& real)
        : real(real)
    {
    }

    bool Open() override { return real.Open(); }

    bool Shut() override { return real.Shut(); }

    bool Close(Nfx::Os::ThreadRecord* thread) override;
    Nfx::Os::ThreadRecord* Create(Nfx::Os::ThreadRoutine start,
                                  void* parameter,
                                  std::uint64_t& threadId,
                                  std::uint32_t stackSize) override;

    Nfx::Os::ThreadRecord* CurrentRecord() override { return real.CurrentRecord(); }

    std::uint64_t CurrentThreadId() override { return real.CurrentThreadId(); }

    bool GetPriority(Nfx::Os::ThreadRecord* thread, std::int32_t& priority) override
    {
        return real.GetPriority(thread, priority);
    }

    void Exit(std::uint32_t code) override { real.Exit(code); }

    bool Resume(Nfx::Os::ThreadRecord* thread) override { return real.Resume(thread); }

    bool SetPriority(Nfx::Os::ThreadRecord* thread, std::int32_t priority) override
    {
        return real.SetPriority(thread, priority);
    }

    void Sleep(std::int32_t milliseconds) override { real.Sleep(milliseconds); }

    bool Suspend(Nfx::Os::ThreadRecord* thread) override { return real.Suspend(thread); }

    bool Terminate(Nfx::Os::ThreadRecord* thread, std::uint32_t exitCode) override
    {
        return real.Terminate(thread, exitCode);
    }

    bool Wait(Nfx::Os::ThreadRecord* thread, std::int32_t timeout) override { return real.Wait(thread, timeout); }

    bool Interrupt(Nfx::Os::ThreadRecord* thread) override { return real.Interrupt(thread); }

    void Pause(std::int32_t timeout) override { real.Pause(timeout); }

    bool SetName(Nfx::Os::ThreadRecord* thread, const char* name) override { return real.SetName(thread, name); }

    bool TakeInterrupt() override { return real.TakeInterrupt(); }

private:
    Nfx::Os::IThread& real;
};
} // namespace Tests
