#pragma once

#include <string>
#include <string_view>

namespace Nfx::System
{
class String;
}

namespace Nfx::Os
{
/// The wide text that the platform's functions take, from UTF-8 or, when it is not valid UTF-8, from the ANSI code
/// page.
std::wstring ToWideText(const System::String& text);

/// UTF-8 of wide text; a lone surrogate becomes the replacement character.
System::String FromWideText(std::wstring_view text);
} // namespace Nfx::Os
