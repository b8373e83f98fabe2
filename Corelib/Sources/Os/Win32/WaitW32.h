#pragma once

#include "Os/Win32/PlatformW32.h"

#include <cstdint>

namespace Nfx::Os
{
/// True when the object was signalled within the timeout: milliseconds, -1 waits without limit, below that nothing is
/// waited for. False as well when the calling thread is interrupted while it would have to wait.
bool WaitForW32(HANDLE object, std::int32_t timeout);

/// The same without an object: only an interruption ends it early.
void PauseW32(std::int32_t timeout);
} // namespace Nfx::Os
