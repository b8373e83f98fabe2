#pragma once

#include <cstddef>
#include <string_view>

namespace Zent::Utils::Json
{
/// The name of a member as the program knows it: a literal without a character that JSON escapes. It is written as it
/// stands, while other keys are looked through each time.
class JSONKey final
{
public:
    template <std::size_t Size>
    explicit consteval JSONKey(const char (&literal)[Size])
        : text(Checked(literal), Size - 1)
    {
    }

    std::string_view Text() const noexcept { return text; }

private:
    static consteval const char* Checked(const char* literal)
    {
        for (const char* character = literal; *character != '\0'; ++character)
        {
            if (*character < ' ' || *character == '"' || *character == '\\')
            {
                throw "the key needs escapes"; // never thrown: such a key does not compile
            }
        }
        return literal;
    }

    std::string_view text;
};
} // namespace Zent::Utils::Json
