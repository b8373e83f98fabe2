#include "Commands/ConflictList.h"

#include "Text/TextFile.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace Zent::Discovery::Console
{
namespace
{
std::string Checked(const std::string& text, const std::string& place = "")
{
    constexpr std::array<std::string_view, 3> Kinds = {"mac:", "ip:", "name:"};
    if (std::ranges::none_of(
            Kinds, [&text](std::string_view kind) { return text.starts_with(kind) && text.size() > kind.size(); }))
    {
        throw std::runtime_error(place + '"' + text +
                                 "\" is no conflict, such as mac:02:00:00:00:00:01, ip:10.0.0.5 or name:press-4");
    }
    return text;
}
} // namespace

std::vector<std::string> ConflictList::Parse(const std::string& text)
{
    if (!text.starts_with('@'))
    {
        return {Checked(text)};
    }
    const std::string path = text.substr(1);
    std::istringstream file(TextFile::Read(path));
    std::vector<std::string> list;
    int number = 0;
    for (std::string line; std::getline(file, line);)
    {
        ++number;
        line.erase(line.find_last_not_of(" \t\r") + 1);
        if (!line.empty() && !line.starts_with('#'))
        {
            list.push_back(Checked(line, path + ": line " + std::to_string(number) + ": "));
        }
    }
    return list;
}
} // namespace Zent::Discovery::Console
