#pragma once

#include "Os/FileResult.h"

#include <cstdint>

namespace Nfx::System
{
class String;
}

namespace Nfx::System::IO
{
/// Throws the exception that fits the failure; its message is the action, ": " and the platform's reason.
[[noreturn]] void ThrowFileError(const Os::FileResult& result,
                                 const String& action,
                                 const char* sourceFile,
                                 std::int32_t line);
} // namespace Nfx::System::IO
