#include "Text/JsonFile.h"

#include "Programs/WrongArgument.h"

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <string_view>
#include <utility>

using Zent::Discovery::Programs::WrongArgument;

namespace Zent::Discovery::Console
{
namespace
{
constexpr std::string_view Blanks = " \t\r\n";
constexpr std::string_view BetweenElements = " \t\r\n,]";

/// A position in a text as its readers count.
class Place final
{
public:
    explicit Place(const std::string& name)
        : name(name)
    {
    }

    /// Positions only grow: large files have many objects.
    void MoveTo(std::size_t next, std::string_view text)
    {
        for (; position < next; ++position)
        {
            if (text[position] == '\n')
            {
                ++line;
                lineStart = position + 1;
            }
        }
    }

    std::string ToString() const
    {
        return name + ": line " + std::to_string(line) + ", column " + std::to_string(position - lineStart + 1);
    }

private:
    const std::string& name;
    std::size_t position = 0;
    std::size_t line = 1;
    std::size_t lineStart = 0;
};

/// The parser's reason alone: it counts from where it began.
std::string ReasonOf(const nlohmann::json::parse_error& error)
{
    const std::string text = error.what();
    const std::size_t end = text.find(": ");
    return end == std::string::npos ? text : text.substr(end + 2);
}
} // namespace

std::vector<JsonFile::Object> JsonFile::Read(const std::string& text, const std::string& name)
{
    std::vector<Object> objects;
    std::size_t start = 0; // of what is parsed
    try
    {
        start = std::min(text.find_first_not_of(Blanks), text.size());
        const bool isArray = text.substr(start, 1) == "[";
        if (isArray)
        {
            const auto begin = text.begin() + static_cast<std::ptrdiff_t>(start);
            const Json whole = Json::parse(begin, text.end()); // what is between the elements, too
            ++start;
        }
        std::istringstream stream(text);
        Place place(name);
        for (;;)
        {
            start = text.find_first_not_of(isArray ? BetweenElements : Blanks, start);
            if (start == std::string::npos)
            {
                return objects;
            }
            place.MoveTo(start, text);
            if (text[start] != '{')
            {
                throw WrongArgument(place.ToString() + ": no JSON object begins here");
            }
            Json value;
            stream.seekg(static_cast<std::streamoff>(start));
            stream >> value;
            objects.push_back({std::move(value), place.ToString()});
            start = static_cast<std::size_t>(stream.tellg());
        }
    }
    catch (const nlohmann::json::parse_error& error)
    {
        const std::size_t position = std::min(start + std::max<std::size_t>(error.byte, 1) - 1, text.size());
        Place place(name);
        place.MoveTo(position, text);
        throw WrongArgument(place.ToString() + ": " + ReasonOf(error));
    }
}
} // namespace Zent::Discovery::Console
