#include "ConfigureCommand.h"

#include "AddressText.h"
#include "DeviceReader.h"
#include "DeviceTable.h"
#include "Json/JSONArray.h"
#include "Json/JSONObject.h"
#include "Output.h"
#include "ServerSession.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

using Nfx::System::String;
using Zent::Utils::Json::JSONArray;
using Zent::Utils::Json::JSONObject;

namespace Zent::Discovery::Console
{
ConfigureCommand::ConfigureCommand(std::chrono::milliseconds wait, std::string file)
    : wait(wait)
    , file(std::move(file))
{
}

ExitStatus ConfigureCommand::Run(ServerSession& session, Output& output)
{
    const std::string configurations = ReadFile();
    session.ChangeIPConfigurations(configurations);
    Interfaces missing = Read(configurations);
    for (const Device::Interface& interface : missing)
    {
        session.RefreshClient(interface.MACAddress); // a device need not announce its new settings by itself
    }

    DeviceTable table;
    DeviceReader reader(session.Messages(), output, wait);
    while (!missing.empty())
    {
        const std::optional<Device> device = reader.Next();
        if (!device)
        {
            break;
        }
        const auto isShown = [&device](const Device::Interface& interface) {
            const Device::Interface* const found = device->FindMAC(interface.MACAddress);
            return found != nullptr && found->IPAddress == interface.IPAddress;
        };
        if (device->Message.Kind == DeviceMessage::MessageKind::Signature && std::erase_if(missing, isShown) > 0)
        {
            table.Add(*device);
        }
    }
    if (!table.Devices().empty())
    {
        output.Show(table);
    }
    for (const Device::Interface& interface : missing)
    {
        output.Complain(interface.MACAddress + " has not taken the address " + interface.IPAddress);
    }
    return reader.IsInterrupted() ? ExitStatus::Interrupted
           : missing.empty()      ? ExitStatus::Success
                                  : ExitStatus::NoAnswer;
}

std::string ConfigureCommand::ReadFile() const
{
    std::ifstream stream(std::filesystem::path(std::u8string(file.begin(), file.end())), std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream.is_open() || stream.bad())
    {
        throw std::runtime_error("cannot read " + file);
    }
    if (text.starts_with("\xEF\xBB\xBF"))
    {
        text.erase(0, 3); // editors' mark of UTF-8, which is not part of a JSON text
    }
    return text;
}

ConfigureCommand::Interfaces ConfigureCommand::Read(const std::string& configurations)
{
    Interfaces interfaces;
    const JSONArray array{String(std::string_view(configurations))};
    for (std::int32_t i = 0; i < array.Length(); ++i)
    {
        const JSONObject object = array.GetJSONObject(i);
        interfaces.push_back({AddressText::MAC(object.GetString("MACAddress").View()),
                              AddressText::IP(object.GetString("IPAddress").View())});
    }
    return interfaces;
}
} // namespace Zent::Discovery::Console
