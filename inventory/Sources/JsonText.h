#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace Zent::Discovery::Inventory
{
/// Puts a JSON object together that holds documents of the library as they are.
class JsonText final
{
public:
    /// size is about how many bytes it will have.
    explicit JsonText(std::size_t size = 0) { text.reserve(size); }

    JsonText& Text(std::string_view key, std::string_view value);
    JsonText& Number(std::string_view key, std::int64_t value);
    JsonText& Flag(std::string_view key, bool value);

    /// json is a value in JSON already.
    JsonText& Raw(std::string_view key, std::string_view json);

    /// The object.
    std::string Take();

    /// The text of a JSON string; bytes that are no valid UTF-8 stay.
    static std::string Quoted(std::string_view text);

    /// A number that is not negative, with one decimal and a point, whatever the locale.
    static std::string OneDecimal(double value);

    /// An array of what json(element) gives for each element.
    template <class TElements, class TJson>
    JsonText& Array(std::string_view key, const TElements& elements, TJson&& json)
    {
        Raw(key, "[");
        const char* separator = "";
        for (const auto& element : elements)
        {
            text += std::exchange(separator, ",");
            text += json(element);
        }
        text += ']';
        return *this;
    }

private:
    std::string text;
};
} // namespace Zent::Discovery::Inventory
