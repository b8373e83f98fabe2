#include "Application.h"

#include "ConfigureCommand.h"
#include "DiscoverCommand.h"
#include "RequestCommand.h"
#include "ServerSession.h"
#include "WatchCommand.h"

#include <iostream>

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
    const DiscoveryLibrary library(options.Library);
    if (options.Command == Options::CommandName::Error)
    {
        return ShowErrorText(library);
    }
    ServerSession session(library, options, messages);
    const ExitStatus status = MakeCommand()->Run(session, output);
    session.Close();
    return status;
}

ExitStatus Application::ShowErrorText(const DiscoveryLibrary& library)
{
    // The library's answer for a number that is none of its codes.
    static constexpr std::string_view Unknown = "Unable to retrieve error message!";
    const std::string text = library.ErrorText(options.ErrorCode);
    if (text == Unknown)
    {
        output.Complain(text);
        return ExitStatus::Failure;
    }
    std::cout << text << '\n';
    return ExitStatus::Success;
}

std::unique_ptr<ICommand> Application::MakeCommand() const
{
    const std::chrono::milliseconds wait = options.Wait.value_or(std::chrono::seconds(2));
    switch (options.Command)
    {
    case Options::CommandName::Watch:
        return std::make_unique<WatchCommand>(options.Wait);
    case Options::CommandName::Refresh:
        return std::make_unique<RequestCommand>(RequestCommand::Refresh(wait, options.MACAddress));
    case Options::CommandName::Reach:
        return std::make_unique<RequestCommand>(RequestCommand::Reach(wait, options.IPAddress));
    case Options::CommandName::Rename:
        return std::make_unique<RequestCommand>(
            options.IPAddress.empty() ? RequestCommand::RenameMAC(wait, options.NewHostName, options.MACAddress)
                                      : RequestCommand::RenameIP(wait, options.NewHostName, options.IPAddress));
    case Options::CommandName::Configure:
        return std::make_unique<ConfigureCommand>(wait, options.ConfigurationFile);
    default:
        return std::make_unique<DiscoverCommand>(wait, options.ExpectedDevices, options.LogFile);
    }
}
} // namespace Zent::Discovery::Console
