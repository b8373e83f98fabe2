#include "Commands/RenameCommand.h"

#include "Commands/Arguments.h"
#include "Commands/ChangeRun.h"
#include "Commands/CommandContext.h"
#include "Commands/SharedOptions.h"
#include "Inventory/Network.h"

using Zent::Discovery::Inventory::ChangeRequest;
using Zent::Discovery::Inventory::IPv4;
using Zent::Discovery::Inventory::Network;

namespace Zent::Discovery::Console
{
namespace
{
/// Each of them would take the one name.
std::string WrongWithAll(const std::string& address)
{
    return Network::ParseAddress(address) == ~IPv4{0} ? address + " is the address of all devices" : "";
}
} // namespace

CLI::App& RenameCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "rename", "give a device a new host name and see that it takes it");
    arguments.AddPositional("NAME", newHostName, "the new host name");
    const Arguments::Argument mac =
        ChangeSettings::AddMAC(arguments, macAddress, "a MAC address of the device; or else its --ip");
    arguments.Add("--ip", "IP", ipAddress, "the IP address of the device")
        .MustPass(&SharedOptions::WrongWithIP)
        .MustPass(&WrongWithAll)
        .Excludes(mac);
    settings.AddWithLookTo(arguments);
    arguments.RequireAny("--mac or --ip", [this] { return !macAddress.empty() || !ipAddress.empty(); });
    return arguments.Command();
}

ExitStatus RenameCommand::Run(CommandContext& context)
{
    if (ipAddress.empty() ? !context.CanBroadcast() : !context.CanReach(ipAddress))
    {
        return ExitStatus::NoAnswer;
    }
    const ChangeRequest request = ipAddress.empty() ? ChangeRequest::Rename(macAddress, newHostName)
                                                    : ChangeRequest::RenameAt(ipAddress, newHostName);
    return ChangeRun(context, settings).CarryOut({{request.Normal()}}, {.Looks = true});
}
} // namespace Zent::Discovery::Console
