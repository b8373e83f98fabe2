#pragma once

#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// Reads which conflicts between devices the user accepts.
class ConflictList final
{
public:
    ConflictList() = delete;

    /// Reads one, such as ip:10.0.0.5, or with @FILE one from each line of a file but empty ones and those that begin
    /// with #.
    /// @throws std::runtime_error that names the place, the text and what is wrong with it.
    static std::vector<std::string> Parse(const std::string& text);
};
} // namespace Zent::Discovery::Console
