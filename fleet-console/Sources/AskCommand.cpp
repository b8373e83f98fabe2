#include "AskCommand.h"

#include "CommandSending.h"
#include "Commands/Arguments.h"
#include "Fleet/CommandExchange.h"
#include "Show/Output.h"
#include "Text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <string>

using Zent::Discovery::Console::Arguments;
using Zent::Discovery::Console::TerminalText;
using Zent::Discovery::Fleet::Command;
using Zent::Discovery::Fleet::DeviceId;
using Zent::Discovery::Fleet::Verdict;

namespace Zent::Discovery::FleetConsole
{
namespace
{
/// The agent answers as soon as it has the command.
constexpr std::chrono::milliseconds UsualTimeout{35000};

constexpr char Done[] = "done";
} // namespace

AskCommand::AskCommand(Command::CommandKind kind)
    : request{kind}
{
}

CLI::App& AskCommand::AddTo(CLI::App& program)
{
    const bool isForOne = request.Kind == Command::CommandKind::Refresh;
    Arguments arguments(program, request.KindName(),
                        isForOne ? "have the agent of a site ask one device"
                                 : "have the agent of a site ask all devices");
    if (isForOne)
    {
        arguments
            .AddPositional(
                "DEVICE", [this](const std::string& text) { request.Device = DeviceId::FromMAC(text).value_or(text); },
                "what its record is called, such as 02-00-00-00-00-0a, or that as a MAC address")
            .MustPass([](const std::string& text) { return DeviceId::FromMAC(text) ? "" : WrongWithId(text); });
    }
    arguments.AddSeconds("--timeout", timeout, "how long to wait for the agent; 35 seconds without it", 1.0);
    return arguments.Command();
}

std::string AskCommand::WrongWithId(const std::string& text)
{
    return DeviceId::Is(text) ? "" : '"' + text + "\" is no id of a device, such as 02-00-00-00-00-0a";
}

ExitStatus AskCommand::Run(CommandContext& context)
{
    const std::string& site = CommandSending::SiteOf(context);
    const std::optional<Verdict> verdict = CommandSending::Send(context, {request}, timeout.value_or(UsualTimeout),
                                                                "Waiting for the agent of site " + site)
                                               .front();
    if (!verdict)
    {
        context.Out.Complain("no reply has come");
        return context.Waiter.IsInterrupted() ? ExitStatus::Interrupted : ExitStatus::NoAnswer;
    }
    if (context.Out.IsJson())
    {
        nlohmann::ordered_json document = {{"Site", site}, {"Command", request.KindName()}, {"Verdict", verdict->Name}};
        if (verdict->Name != Done)
        {
            document.update({{"Code", verdict->Code}, {"Text", verdict->Text}});
        }
        context.Out.PrintLine(
            R"({"Command":)" +
            TerminalText::Json(document.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace)) + "}");
    }
    if (verdict->Name == Done)
    {
        const std::string whom = request.Device.empty() ? "all devices" : request.Device;
        context.Out.Conclude("the agent of site " + site + " has asked " + whom + " (done)");
    }
    else
    {
        context.Out.Complain(CommandSending::SentenceOf(*verdict));
    }
    return CommandSending::StatusOf({*verdict}, Done);
}
} // namespace Zent::Discovery::FleetConsole
