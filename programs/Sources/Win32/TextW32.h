#pragma once

#include <string>

namespace Zent::Discovery::Programs
{
/// Texts of the system. Any thread.
class TextW32 final
{
public:
    TextW32() = delete;

    /// Of a text that ends with NUL.
    static std::string Utf8(const wchar_t* text);
};
} // namespace Zent::Discovery::Programs
