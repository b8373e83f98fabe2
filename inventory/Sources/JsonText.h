#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Zent::Discovery::Inventory
{
/// Puts a JSON object together that holds documents of the library as they are.
class JsonText final
{
public:
    JsonText& Text(std::string_view key, std::string_view value);
    JsonText& Number(std::string_view key, std::int64_t value);
    JsonText& Flag(std::string_view key, bool value);

    /// json is a value in JSON already.
    JsonText& Raw(std::string_view key, std::string_view json);

    /// The object.
    std::string Take();

    /// The text of a JSON string; bytes that are no valid UTF-8 stay.
    static std::string Quoted(std::string_view text);

    /// Joins what each element gives to an array.
    template <class TElements, class TJson>
    static std::string Array(const TElements& elements, TJson&& json)
    {
        std::string text = "[";
        for (const auto& element : elements)
        {
            text += (text.size() > 1 ? "," : "") + json(element);
        }
        return text + "]";
    }

private:
    std::string text;
};
} // namespace Zent::Discovery::Inventory
