#pragma once

#include "Os/FileResult.h"

namespace Nfx::Os
{
/// The result for the calling thread's last error.
FileResult LastFileFailureW32();
} // namespace Nfx::Os
