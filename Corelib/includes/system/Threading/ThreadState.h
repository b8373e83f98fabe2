#pragma once

#include "system/Enum.h"

namespace Nfx::System::Threading
{
/// What a thread is doing and what was asked of it: flags that may be combined.
/// The text joins the names of the flags by ", " in the order of their values, and is parsed the same way; no flag at
/// all reads "Running". A value with bits that have no name reads as its decimal number.
class ThreadState final : public Enum<ThreadState>
{
public:
    enum : std::int32_t
    {
        Running = 0,
        StopRequested = 1,
        SuspendRequested = 2,
        Background = 4,
        Unstarted = 8,
        Stopped = 16,
        WaitSleepJoin = 32,
        Suspended = 64,
        AbortRequested = 128,
        Aborted = 256
    };

    static constexpr EnumName Names[] = {{Running, "Running"},
                                         {StopRequested, "StopRequested"},
                                         {SuspendRequested, "SuspendRequested"},
                                         {Background, "Background"},
                                         {Unstarted, "Unstarted"},
                                         {Stopped, "Stopped"},
                                         {WaitSleepJoin, "WaitSleepJoin"},
                                         {Suspended, "Suspended"},
                                         {AbortRequested, "AbortRequested"},
                                         {Aborted, "Aborted"}};

    using Enum::Enum;

    String ToString() const override;

    /// @throws Exception with ErrorCodes::InvalidFormat when a part is not the name of a flag.
    static ThreadState Parse(const String& text);
};
} // namespace Nfx::System::Threading
