#include "Os/Win32/StringW32.h"

#include "Os/Win32/WideTextW32.h"
#include "system/String.h"

namespace Nfx::Os
{
System::String StringW32::ToUtf8(const System::String& text)
{
    return FromWideText(ToWideText(text));
}
} // namespace Nfx::Os
