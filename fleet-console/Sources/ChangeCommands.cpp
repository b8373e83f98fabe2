#include "ChangeCommands.h"

#include "AskCommand.h"
#include "Commands/Arguments.h"
#include "Commands/InterfaceFile.h"
#include "Commands/SharedOptions.h"
#include "Fleet/Topics.h"
#include "Programs/WrongArgument.h"

#include <vector>

using Zent::Discovery::Console::Arguments;
using Zent::Discovery::Console::InterfaceFile;
using Zent::Discovery::Console::SharedOptions;
using Zent::Discovery::Fleet::DeviceId;
using Zent::Discovery::Inventory::ChangeRequest;
using Zent::Discovery::Programs::WrongArgument;

namespace Zent::Discovery::FleetConsole
{
CLI::App& RenameCommand::AddTo(CLI::App& program)
{
    Arguments arguments(program, "rename",
                        "have the agent of a site give a device a new host name and see that it takes it");
    arguments.AddPositional("NAME", newHostName, "the new host name");
    const Arguments::Argument mac =
        arguments.Add("--mac", "MAC", macAddress, "a MAC address of the device").MustPass(&SharedOptions::WrongWithMAC);
    const Arguments::Argument id =
        arguments.Add("--device", "ID", device, "or else what its record is called, such as 02-00-00-00-00-0a")
            .MustPass(&AskCommand::WrongWithId)
            .Excludes(mac);
    arguments.Add("--name", "NAME", hostName, "or else its host name so far").Excludes(mac).Excludes(id);
    arguments.RequireAny("--device, --mac or --name",
                         [this] { return !macAddress.empty() || !device.empty() || !hostName.empty(); });
    settings.AddTo(arguments);
    return arguments.Command();
}

ExitStatus RenameCommand::Run(CommandContext& context)
{
    RemoteChange change(context, settings);
    if (!change.Look())
    {
        return ExitStatus::Interrupted;
    }
    return change.CarryOut({ChangeRequest::Rename(MeantBy(change.Devices()), newHostName).Normal()});
}

/// The MAC address of the device.
std::string RenameCommand::MeantBy(const SiteDevices& devices) const
{
    if (!macAddress.empty())
    {
        return macAddress;
    }
    if (!device.empty())
    {
        return DeviceId::ToMAC(device).value_or("");
    }
    const std::vector<std::string> found = devices.AddressesOf(hostName);
    if (found.size() == 1)
    {
        return found.front();
    }
    std::string others;
    for (const std::string& each : found)
    {
        others += (others.empty() ? ": " : ", ") + each;
    }
    throw WrongArgument(
        "--name: " +
        (found.empty() ? "no device of the site has" : std::to_string(found.size()) + " devices of the site have") +
        " the name \"" + hostName + '"' + others);
}

CLI::App& ConfigureCommand::AddTo(CLI::App& program)
{
    Arguments arguments(
        program, "configure",
        "have the agent of a site give network interfaces new settings and see that the devices take them");
    arguments.AddPositional("FILE", file, "a JSON array of interfaces");
    settings.AddTo(arguments);
    return arguments.Command();
}

ExitStatus ConfigureCommand::Run(CommandContext& context)
{
    RemoteChange change(context, settings);
    const std::vector<ChangeRequest> requests = InterfaceFile::Read(file);
    return change.Look() ? change.CarryOut(requests) : ExitStatus::Interrupted;
}
} // namespace Zent::Discovery::FleetConsole
