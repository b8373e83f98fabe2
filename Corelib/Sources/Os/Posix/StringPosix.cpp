#include "Os/Posix/StringPosix.h"

#include "system/String.h"

namespace Nfx::Os
{
System::String StringPosix::ToUtf8(const System::String& text)
{
    return text;
}
} // namespace Nfx::Os
