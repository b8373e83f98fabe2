#include "Commands/RenameCommand.h"

#include "Commands/ChangeRun.h"
#include "Commands/CommandContext.h"
#include "Commands/SharedOptions.h"
#include "Inventory/Network.h"

#include <CLI/CLI.hpp>

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
    CLI::App& command = *parent.add_subcommand("rename", "give a device a new host name and see that it takes it");
    command.add_option("NAME", newHostName, "the new host name")->required()->type_name("");
    CLI::Option& mac = ChangeSettings::AddMAC(command, macAddress, "a MAC address of the device; or else its --ip");
    command.add_option("--ip", ipAddress, "the IP address of the device")
        ->type_name("IP")
        ->check(SharedOptions::IPAddress())
        ->check(&WrongWithAll)
        ->excludes(&mac);
    settings.AddWithLookTo(command);
    command.parse_complete_callback([this] {
        if (macAddress.empty() && ipAddress.empty())
        {
            throw CLI::RequiredError("--mac or --ip"); // to know which device is meant
        }
    });
    return command;
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
