#pragma once

#include "support/Gate.h"

#include <cstdint>

namespace Tests
{
/// The calls of the platform that can be made to fail or to wait.
enum class Call
{
    OpenSocket,
    SetOption,
    Bind,
    Connect,
    Send,
    Receive,
    Shutdown,
    BeforeClose, // a socket is about to be closed
    AfterClose,  // and its operations have been woken
    CreateThread,
    AfterCreateThread, // the thread runs, but its creator does not know yet
    CreateEvent,
    CreateSemaphore,
    ReleaseSemaphore,
    WaitSemaphore,
    OpenFile,
    WriteFile,
    RenameFile
};

/// What the platform's services do to their callers, process-wide. Any thread.
class Faults final
{
public:
    Faults() = delete;

    static constexpr int Always = 1'000'000;

    /// Lets calls of this kind fail, the first of them being number first from now on, counted from 1. The error is a
    /// socket error, or a native one for files; the others have none.
    static void Fail(Call call, int first, int count = 1, std::int32_t error = 0);

    /// Sends the calls of this kind through the gate, from number first on, counted as in Fail. The gate must live
    /// until Clear.
    static void Hold(Call call, Gate& gate, int first = 1);

    /// Takes all faults and gates back and counts the calls anew.
    static void Clear();

    /// How many calls were failed since Clear.
    static int FailedCalls();

    /// What the services have handed out and not got back: sockets, threads, events, semaphores and files.
    static int OpenHandles();

    // For the services.

    /// Counts the call and lets it through its gate; true when it has to fail.
    static bool Strikes(Call call, std::int32_t& error);
    static bool Strikes(Call call);

    static void CountOpened(bool isOpened) noexcept;
    static void CountClosed() noexcept;
};
} // namespace Tests
