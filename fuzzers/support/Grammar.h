#pragma once

#include <string_view>

namespace Fuzzing
{
/// What the texts of values look like, written down a second time and in another way than the parsers do it.
class Grammar final
{
public:
    Grammar() = delete;

    static bool IsMACAddress(std::string_view text);
    static bool IsIPAddress(std::string_view text);
    static bool IsVersion(std::string_view text);
};
} // namespace Fuzzing
