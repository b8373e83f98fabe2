#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// JSON that users have written or kept.
class JsonFile final
{
public:
    using Json = nlohmann::ordered_json; // members stay in their order

    /// An object and where it begins, for messages: saved.json: line 2, column 1.
    struct Object
    {
        Json Value;
        std::string Place;
    };

    JsonFile() = delete;

    /// The objects of a text, one after another or in one array. name stands for the text in messages.
    /// @throws WrongArgument that names line, column and reason when the text holds something else.
    static std::vector<Object> Read(const std::string& text, const std::string& name);
};
} // namespace Zent::Discovery::Console
