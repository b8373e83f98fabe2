#pragma once

#include <string>
#include <string_view>

namespace Zent::Discovery::Console
{
/// Text files as users have them.
class TextFile final
{
public:
    TextFile() = delete;

    /// The path that stands for standard input.
    static constexpr std::string_view StandardInput = "-";

    /// What to call the file in messages.
    static std::string NameOf(const std::string& path);

    /// The content in UTF-8 without an editor's mark; UTF-16, in which a shell of Windows redirects output, is
    /// converted. path is UTF-8.
    /// @throws std::runtime_error with the reason when the file cannot be read.
    static std::string Read(const std::string& path);

    /// Makes the file anew with that content. path is UTF-8.
    /// @throws std::runtime_error with the reason when it cannot be written.
    static void Write(const std::string& path, const std::string& text);
};
} // namespace Zent::Discovery::Console
