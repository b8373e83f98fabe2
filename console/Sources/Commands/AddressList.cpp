#include "Commands/AddressList.h"

#include "Text/TextFile.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

using Zent::Discovery::Inventory::Network;

namespace Zent::Discovery::Console
{
namespace
{
constexpr std::string_view Separators = ", \t\r";

void AddLine(std::vector<Network>& list, std::string_view line, const std::string& place)
{
    std::size_t end = 0;
    for (std::size_t start = line.find_first_not_of(Separators); start != std::string_view::npos;
         start = line.find_first_not_of(Separators, end))
    {
        end = std::min(line.find_first_of(Separators, start), line.size());
        try
        {
            list.push_back(Network::Parse(line.substr(start, end - start)));
        }
        catch (const std::invalid_argument& error)
        {
            throw std::runtime_error(place + ", column " + std::to_string(start + 1) + ": " + error.what());
        }
    }
}

void AddFile(std::vector<Network>& list, const std::string& path)
{
    const std::string text = TextFile::Read(path);
    int number = 1;
    for (std::size_t start = 0; start < text.size(); ++number)
    {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string_view line = std::string_view(text).substr(start, end - start);
        AddLine(list, line.substr(0, line.find('#')), path + ": line " + std::to_string(number));
        start = end + 1;
    }
}
} // namespace

std::vector<Network> AddressList::Parse(const std::string& text)
{
    std::vector<Network> list;
    for (std::size_t start = 0; start <= text.size();)
    {
        const std::size_t end = std::min(text.find(',', start), text.size());
        const std::string part = text.substr(start, end - start);
        if (part.starts_with('@'))
        {
            AddFile(list, part.substr(1));
        }
        else
        {
            try
            {
                list.push_back(Network::Parse(part));
            }
            catch (const std::invalid_argument& error)
            {
                throw std::runtime_error(error.what());
            }
        }
        start = end + 1;
    }
    return list;
}
} // namespace Zent::Discovery::Console
