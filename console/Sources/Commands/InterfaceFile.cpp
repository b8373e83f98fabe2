#include "Commands/InterfaceFile.h"

#include "Programs/WrongArgument.h"
#include "Text/JsonFile.h"
#include "Text/TextFile.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <optional>
#include <stdexcept>
#include <string_view>

using Zent::Discovery::Inventory::ChangeRequest;
using Zent::Discovery::Programs::WrongArgument;

namespace Zent::Discovery::Console
{
namespace
{
[[noreturn]] void Refuse(const std::string& place, const std::string& reason)
{
    throw WrongArgument(place + ": " + reason + " (bad-file)");
}

/// The text of a member, whose name is matched without regard to ASCII letter case as the library matches it; nothing
/// when there is none.
std::optional<std::string> FindText(const JsonFile::Object& object, std::string_view name)
{
    const auto isSame = [](char left, char right) { return std::tolower(left) == std::tolower(right); };
    for (const auto& [key, value] : object.Value.items())
    {
        if (std::ranges::equal(key, name, isSame))
        {
            if (!value.is_string())
            {
                Refuse(object.Place, '"' + key + "\" is no text");
            }
            return value.get<std::string>();
        }
    }
    return std::nullopt;
}

std::string Text(const JsonFile::Object& object, const std::string& name)
{
    const std::optional<std::string> text = FindText(object, name);
    if (!text)
    {
        Refuse(object.Place, "the interface has no \"" + name + "\"");
    }
    return *text;
}

ChangeRequest RequestOf(const JsonFile::Object& object)
{
    const std::string friendlyName = Text(object, "FriendlyName");
    const ChangeRequest request = ChangeRequest::Configure({.MACAddress = Text(object, "MACAddress"),
                                                            .IPAddress = Text(object, "IPAddress"),
                                                            .SubNetMask = Text(object, "SubNetMask"),
                                                            .DefaultGateway = Text(object, "DefaultGateway"),
                                                            .MTU = FindText(object, "MTU").value_or(""),
                                                            .FriendlyName = friendlyName});
    try
    {
        return request.Normal();
    }
    catch (const std::invalid_argument& error)
    {
        Refuse(object.Place, error.what());
    }
}

std::vector<JsonFile::Object> ObjectsOf(const std::string& file)
{
    try
    {
        return JsonFile::Read(TextFile::Read(file), TextFile::NameOf(file));
    }
    catch (const std::runtime_error& error)
    {
        throw WrongArgument(std::string(error.what()) + " (bad-file)");
    }
}
} // namespace

std::vector<ChangeRequest> InterfaceFile::Read(const std::string& file)
{
    std::vector<ChangeRequest> requests;
    std::map<std::string, std::string> places; // by MAC address
    for (const JsonFile::Object& object : ObjectsOf(file))
    {
        requests.push_back(RequestOf(object));
        const std::string& address = requests.back().Interface.MACAddress;
        const auto [first, isNew] = places.emplace(address, object.Place);
        if (!isNew)
        {
            Refuse(object.Place, address + " has settings already at " + first->second);
        }
    }
    if (requests.empty())
    {
        Refuse(TextFile::NameOf(file), "there are no settings of an interface; the manual shows some");
    }
    return requests;
}
} // namespace Zent::Discovery::Console
