#pragma once

#include <stdexcept>
#include <string>

namespace Zent::Discovery::Console
{
/// A function of the library gave a result code other than 0.
class CallFailure final : public std::runtime_error
{
public:
    /// text is the library's text for the code.
    CallFailure(const std::string& function, int code, const std::string& text)
        : std::runtime_error(function + " failed: " + text + " (" + CodeText(code) + ")")
    {
    }

    /// Decimal for the small codes, hexadecimal for the status codes, whose decimal form nobody knows.
    static std::string CodeText(int code);
};
} // namespace Zent::Discovery::Console
