#include "Application.h"

#include "ConfigureCommand.h"
#include "DiscoverCommand.h"
#include "ErrorCommand.h"
#include "InventoryDiffCommand.h"
#include "InventoryShowCommand.h"
#include "RequestCommand.h"
#include "WatchCommand.h"

using Zent::Discovery::Programs::HostSession;

namespace Zent::Discovery::Console
{
Application::Application(const Options& options, MessageQueue& messages, Output& output)
    : options(options)
    , messages(messages)
    , output(output)
{
}

ExitStatus Application::Run()
{
    switch (options.Command)
    {
    case Options::CommandName::InventoryDiff:
        return InventoryDiffCommand(options.File, options.LaterFile, options.Selection).Run(output);
    case Options::CommandName::InventoryShow:
        return InventoryShowCommand(options.File, options.Selection).Run(output);
    case Options::CommandName::Error:
        return ErrorCommand(options.ErrorCode).Run(HostSession::Load(options.Session.Library), output);
    default:
        return RunWithServer();
    }
}

ExitStatus Application::RunWithServer()
{
    using Kind = Inventory::DeviceMessage::MessageKind;
    const auto queue = [this](Kind kind) {
        return [this, kind](const std::string& document) {
            messages.Push({kind, document, std::chrono::system_clock::now()});
        };
    };
    HostSession session(options.Session, {queue(Kind::Signature), queue(Kind::Hello), queue(Kind::Bye)});
    const ExitStatus status = MakeCommand()->Run(session.Requests(), messages, output);
    session.Close();
    return status;
}

std::unique_ptr<ICommand> Application::MakeCommand() const
{
    const std::chrono::milliseconds wait = options.Wait.value_or(std::chrono::seconds(2));
    switch (options.Command)
    {
    case Options::CommandName::Watch:
        return std::make_unique<WatchCommand>(options.Wait, options.Interval, options.Selection);
    case Options::CommandName::Refresh:
        return std::make_unique<RequestCommand>(RequestCommand::Refresh(wait, options.MACAddress));
    case Options::CommandName::Reach:
        return std::make_unique<RequestCommand>(RequestCommand::Reach(wait, options.IPAddress));
    case Options::CommandName::Rename:
        return std::make_unique<RequestCommand>(
            options.IPAddress.empty() ? RequestCommand::RenameMAC(wait, options.NewHostName, options.MACAddress)
                                      : RequestCommand::RenameIP(wait, options.NewHostName, options.IPAddress));
    case Options::CommandName::Configure:
        return std::make_unique<ConfigureCommand>(wait, options.File);
    default:
        return std::make_unique<DiscoverCommand>(wait, options.ExpectedDevices, options.Selection,
                                                 options.Session.LogFile);
    }
}
} // namespace Zent::Discovery::Console
