#include "Commands/InventoryReader.h"

#include "Programs/WrongArgument.h"
#include "Text/JsonFile.h"
#include "Text/TextFile.h"
#include "Text/TimeText.h"

#include <stdexcept>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceList;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Programs::WrongArgument;

namespace Zent::Discovery::Console
{
namespace
{
std::string TextOf(const JsonFile::Json& json)
{
    return json.dump(-1, ' ', false, JsonFile::Json::error_handler_t::replace);
}

DeviceMessage::MessageKind KindOf(const JsonFile::Json& document)
{
    const auto found = document.find("Message");
    return found == document.end() ? DeviceMessage::MessageKind::Signature
           : *found == "Bye"       ? DeviceMessage::MessageKind::Bye
           : *found == "Hello"     ? DeviceMessage::MessageKind::Hello
                                   : DeviceMessage::MessageKind::Signature;
}

/// The zero of the clock for a document that tells no time, such as one that a host program has saved.
DeviceMessage::TimePoint TimeOf(const JsonFile::Json& document)
{
    const auto found = document.find("Time");
    return found == document.end() || !found->is_string()
               ? DeviceMessage::TimePoint()
               : TimeText::ParseUtc(found->get<std::string>()).value_or(DeviceMessage::TimePoint());
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
    std::string document = R"({"Host":)" + TextOf(*host);
    if (const auto source = object.Value.find("SourceNIC"); source != object.Value.end())
    {
        document += R"(,"SourceNIC":)" + TextOf(*source);
    }
    try
    {
        return Device({KindOf(object.Value), document + "}", TimeOf(object.Value)});
    }
    catch (const std::invalid_argument& error)
    {
        throw WrongArgument(object.Place + ": " + error.what());
    }
}
} // namespace

DeviceList InventoryReader::Read(const std::string& path)
{
    return ReadText(TextFile::Read(path), path);
}

DeviceList InventoryReader::ReadText(const std::string& text, const std::string& name)
{
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
