#include "Commands/ConflictList.h"

#include "Inventory/Event.h"
#include "Text/TextFile.h"

#include <sstream>
#include <stdexcept>

namespace Zent::Discovery::Console
{
namespace
{
std::string Checked(const std::string& text, const std::string& place = "")
{
    try
    {
        Inventory::Conflict::CheckText(text);
        return text;
    }
    catch (const std::invalid_argument& error)
    {
        throw std::runtime_error(place + error.what());
    }
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
