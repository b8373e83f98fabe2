#pragma once

#include <string>
#include <string_view>

namespace Nfx::System::LogStreams
{
/// Appends text with its control characters as \xHH, so that nothing in it ends the line or steers a terminal.
void AppendPrintable(std::string& target, std::string_view text);
} // namespace Nfx::System::LogStreams
