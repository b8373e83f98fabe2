#pragma once

#include <cstdint>

namespace Tests
{
/// Entries of /proc/self/fd, the one that counts included.
std::int64_t OpenDescriptors();

std::int64_t RunningThreads();

/// Memory of this process that is in RAM, in KiB.
std::int64_t ResidentKiB();

/// Shuts the socket down that is bound to the port at every address, as a failing network would; false when there is
/// none. Not while the server is started or stopped: the port may seem taken for a moment.
bool ShutDownSocketOn(std::uint16_t port);

/// Closes that socket under whoever uses it, by putting another file in its place.
bool CloseSocketOn(std::uint16_t port);

/// Sends a signal to every other thread of this process, so many times to each.
void SignalOtherThreads(int signal, int times);

/// What tells the socket that is bound to the port at every address from others before and after it; 0 for none.
std::uint64_t SocketOn(std::uint16_t port);
} // namespace Tests
