#pragma once

#include <cstdint>

namespace Tests
{
/// What a process must not use up. Handles are the open ones, on Linux descriptors; memory is KiB in RAM.
struct ProcessState
{
    std::int64_t Handles;
    std::int64_t Threads;
    std::int64_t Memory;
};

ProcessState CurrentState();

/// Shuts the socket down that is bound to the port at every address, as a failing network would; false when there is
/// none. Not while the server is started or stopped: the port may seem taken for a moment.
bool ShutDownSocketOn(std::uint16_t port);
} // namespace Tests
