#pragma once

#include "Os/ThreadTable.h"

namespace Nfx::Os
{
/// The calling thread as the record that it was created with.
class CurrentThreadW32 final
{
public:
    CurrentThreadW32() = delete;

    static void Begin(ThreadRecord& record) noexcept;

    /// Gives up the use that the thread has of its record. Harmless in threads that were not created here.
    static void End() noexcept;

    /// Whether Interrupt was called for it and is not taken back yet; never in threads that were not created here.
    static bool IsInterrupted() noexcept;

    /// The same, and takes it back.
    static bool TakeInterrupt() noexcept;
};
} // namespace Nfx::Os
