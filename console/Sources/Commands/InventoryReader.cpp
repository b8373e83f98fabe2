#include "Commands/InventoryReader.h"

#include "Json/JSONObject.h"
#include "Text/TextFile.h"
#include "system/Exception.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>

using Nfx::System::String;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceList;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Utils::Json::JSONObject;

namespace Zent::Discovery::Console
{
namespace
{
const char NoDocument[] = "the document is malformed or has no \"Host\"";
} // namespace

DeviceList InventoryReader::Read(const std::string& path)
{
    return ReadText(TextFile::Read(path), path);
}

DeviceList InventoryReader::ReadText(std::string_view text, const std::string& name)
{
    return InventoryReader(text, name).ReadAll();
}

InventoryReader::InventoryReader(std::string_view text, const std::string& name)
    : text(text)
    , name(name)
{
}

DeviceList InventoryReader::ReadAll()
{
    DeviceList all;
    for (SkipSeparators(); position < text.size(); SkipSeparators())
    {
        const std::size_t end = EndOfDocument();
        all.Add(ReadDocument(text.substr(position, end - position)));
        position = end;
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

/// Goes to the next document, or to the end of the text.
void InventoryReader::SkipSeparators()
{
    static constexpr std::string_view Blanks = " \t\r\n";
    position = std::min(text.find_first_not_of(Blanks, position), text.size());
    if (position < text.size() && text[position] == '[' && !isArray)
    {
        isArray = true;
        ++position;
    }
    if (isArray)
    {
        position = std::min(text.find_first_not_of(" \t\r\n,]", position), text.size());
    }
}

/// Finds the brace that closes the document, so that each one can be parsed and blamed for itself.
std::size_t InventoryReader::EndOfDocument() const
{
    if (text[position] != '{')
    {
        Refuse("no JSON document begins here");
    }
    std::size_t depth = 0;
    bool isInString = false;
    for (std::size_t at = position; at < text.size(); ++at)
    {
        const char character = text[at];
        if (isInString)
        {
            at += character == '\\' ? 1u : 0u;
            isInString = character != '"';
            continue;
        }
        isInString = character == '"';
        depth += character == '{' ? 1u : 0u;
        depth -= character == '}' ? 1u : 0u;
        if (depth == 0)
        {
            return at + 1;
        }
    }
    Refuse("the document does not end");
}

Device InventoryReader::ReadDocument(std::string_view document) const
{
    try
    {
        const JSONObject object{String(document)};
        String kind("Signature");
        object.TryGetString("Message", kind);
        JSONObject source;
        std::string rest = R"({"Host":)" + std::string(object.GetJSONObject("Host").ToString().View());
        if (object.TryGetJSONObject("SourceNIC", source))
        {
            rest += R"(,"SourceNIC":)" + std::string(source.ToString().View());
        }
        return Device({kind.View() == "Bye"     ? DeviceMessage::MessageKind::Bye
                       : kind.View() == "Hello" ? DeviceMessage::MessageKind::Hello
                                                : DeviceMessage::MessageKind::Signature,
                       rest + "}", std::chrono::system_clock::now()});
    }
    catch (const Nfx::System::Exception&)
    {
        Refuse(NoDocument);
    }
    catch (const std::invalid_argument&)
    {
        Refuse(NoDocument);
    }
}

void InventoryReader::Refuse(const std::string& reason) const
{
    const auto line = 1 + std::ranges::count(text.substr(0, position), '\n');
    throw std::runtime_error(name + " is no saved result: line " + std::to_string(line) + ": " + reason +
                             "; save one with: discovery-console discover --json > FILE");
}
} // namespace Zent::Discovery::Console
