#include "Commands/InventoryReader.h"

#include "Inventory/Network.h"
#include "Programs/TimeText.h"
#include "Programs/WrongArgument.h"
#include "Text/JsonFile.h"
#include "Text/TextFile.h"

#include <initializer_list>
#include <optional>
#include <stdexcept>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceList;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Inventory::Network;
using Zent::Discovery::Programs::TimeText;
using Zent::Discovery::Programs::WrongArgument;

namespace Zent::Discovery::Console
{
namespace
{
std::string TextOf(const JsonFile::Json& json)
{
    return json.dump(-1, ' ', false, JsonFile::Json::error_handler_t::replace);
}

[[noreturn]] void Refuse(const JsonFile::Object& object,
                         const std::string& member,
                         const JsonFile::Json& value,
                         const std::string& reason)
{
    throw WrongArgument(object.Place + ": \"" + member + "\" is " + reason + ": " + TextOf(value));
}

/// A device that a comparison has told to be missing is none of those that are there.
DeviceMessage::MessageKind KindOf(const JsonFile::Object& object)
{
    const JsonFile::Json& document = object.Value;
    if (const auto change = document.find("Change");
        change != document.end() && (*change == "Missing" || *change == "Left"))
    {
        return DeviceMessage::MessageKind::Bye;
    }
    const auto found = document.find("Message");
    if (found == document.end() || *found == "Signature")
    {
        return DeviceMessage::MessageKind::Signature;
    }
    if (*found != "Bye" && *found != "Hello")
    {
        Refuse(object, "Message", *found, "none of Signature, Hello and Bye");
    }
    return *found == "Bye" ? DeviceMessage::MessageKind::Bye : DeviceMessage::MessageKind::Hello;
}

/// The zero of the clock for a document that tells no time, such as one that a host program has saved.
DeviceMessage::TimePoint TimeOf(const JsonFile::Object& object)
{
    const auto found = object.Value.find("Time");
    if (found == object.Value.end())
    {
        return {};
    }
    const std::optional<DeviceMessage::TimePoint> time =
        found->is_string() ? TimeText::ParseUtc(found->get<std::string>()) : std::nullopt;
    if (!time)
    {
        Refuse(object, "Time", *found, "no time such as 2026-11-25T10:15:40.120Z");
    }
    return *time;
}

/// What tables show of a host must be of the right kind as far as it is there: a hole in its place would hide what is
/// wrong with the file.
void CheckTexts(const JsonFile::Object& object,
                const JsonFile::Json& record,
                const std::string& path,
                std::initializer_list<const char*> names)
{
    for (const char* const name : names)
    {
        if (const auto found = record.find(name); found != record.end() && !found->is_string())
        {
            Refuse(object, path + name, *found, "no text");
        }
    }
}

void CheckInterface(const JsonFile::Object& object, const JsonFile::Json& interface, const std::string& path)
{
    if (!interface.is_object())
    {
        Refuse(object, path, interface, "no object");
    }
    CheckTexts(object, interface, path + ".", {"MACAddress", "IPAddress", "SubNetMask", "DefaultGateway", "MTU"});
    for (const char* const name : {"IPAddress", "SubNetMask", "DefaultGateway"})
    {
        const auto found = interface.find(name);
        if (found != interface.end() && *found != "" && !Network::ParseAddress(found->get<std::string>()))
        {
            Refuse(object, path + "." + name, *found, "no IPv4 address");
        }
    }
}

void CheckHost(const JsonFile::Object& object, const JsonFile::Json& host)
{
    CheckTexts(object, host, "Host.", {"HostName", "DeviceType", "DeviceFamily", "SerialNumber"});
    const auto interfaces = host.find("NICs");
    if (interfaces == host.end())
    {
        return;
    }
    if (!interfaces->is_array())
    {
        Refuse(object, "Host.NICs", *interfaces, "no array");
    }
    for (std::size_t i = 0; i < interfaces->size(); ++i)
    {
        CheckInterface(object, (*interfaces)[i], "Host.NICs[" + std::to_string(i) + "]");
    }
}

/// As the library's document, without what the program has added.
Device DeviceOf(const JsonFile::Object& object)
{
    const auto host = object.Value.find("Host");
    if (host == object.Value.end() || !host->is_object())
    {
        throw WrongArgument(object.Place + ": the document has no \"Host\"; save a result with: "
                                           "discovery-console discover --json > FILE");
    }
    CheckHost(object, *host);
    std::string document = R"({"Host":)" + TextOf(*host);
    if (const auto source = object.Value.find("SourceNIC"); source != object.Value.end())
    {
        CheckInterface(object, *source, "SourceNIC");
        document += R"(,"SourceNIC":)" + TextOf(*source);
    }
    try
    {
        return Device({KindOf(object), document + "}", TimeOf(object)});
    }
    catch (const std::invalid_argument& error)
    {
        throw WrongArgument(object.Place + ": " + error.what());
    }
}
} // namespace

DeviceList InventoryReader::Read(const std::string& path)
{
    return ReadText(TextFile::Read(path), TextFile::NameOf(path));
}

DeviceList InventoryReader::ReadText(const std::string& text, const std::string& name)
{
    if (text.find_first_not_of(" \t\r\n") == std::string::npos)
    {
        throw WrongArgument(name + " is empty, which is no inventory; save one with: "
                                   "discovery-console discover --json > FILE");
    }
    DeviceList all;
    for (const JsonFile::Object& object : JsonFile::Read(text, name))
    {
        all.Add(DeviceOf(object));
    }
    DeviceList present;
    for (const Device& device : all.Devices())
    {
        if (device.Message.Kind != DeviceMessage::MessageKind::Bye)
        {
            present.Add(device);
        }
    }
    return present;
}
} // namespace Zent::Discovery::Console
