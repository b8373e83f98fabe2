#pragma once

#include "Os/FileResult.h"

namespace Nfx::System
{
class String;
}

namespace Nfx::Os
{
/// The result for an errno of a call on this path: a missing file and a missing folder have one number.
FileResult FileFailurePosix(int number, const System::String& path);
} // namespace Nfx::Os
