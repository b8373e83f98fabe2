#include "Commands/CommandContext.h"
#include "Commands/CommandLine.h"
#include "Programs/Interruption.h"
#include "Programs/Process.h"
#include "Programs/WrongArgument.h"
#include "Show/Output.h"
#include "Terminal/HostPlatform.h"
#include "Terminal/ProgramRights.h"
#include "Terminal/Terminal.h"
#include "system/Exception.h"

#include <cerrno>
#include <exception>
#include <iostream>
#include <system_error>

using namespace Zent::Discovery::Console;
using Zent::Discovery::Programs::Interruption;
using Zent::Discovery::Programs::MessageQueue;
using Zent::Discovery::Programs::Process;
using Zent::Discovery::Programs::WrongArgument;

namespace
{
ExitStatus Run(ICommand& command, const ProgramOptions& options)
{
    MessageQueue messages;
    const Interruption interruption([&messages] { messages.Interrupt(); });
    const Terminal out(Terminal::Stream::Output);
    const Terminal errors(Terminal::Stream::Errors);
    Output output(std::cout, std::cerr,
                  {.Json = options.Json,
                   .Csv = options.Csv,
                   .OutIsTerminal = out.IsInteractive(),
                   .ErrorsAreTerminal = errors.IsInteractive(),
                   .HasColours = HostPlatform::EnvironmentVariable("NO_COLOR").empty(),
                   .Width = out.IsInteractive() ? out.Size().Width : TextTable::NoLimit});
    try
    {
        CommandContext context(options, messages, output);
        const ExitStatus status = command.Run(context);
        context.Close();
        return output.Finish() ? status : ExitStatus::Failure;
    }
    catch (const WrongArgument& error)
    {
        output.Complain(error.what());
        return ExitStatus::Usage;
    }
    catch (const std::exception& error)
    {
        output.Complain(error.what());
    }
    catch (const Nfx::System::Exception& error)
    {
        output.Complain(error.GetMessage().View());
    }
    return ExitStatus::Failure;
}
} // namespace

int main(int argc, char* argv[])
{
    try
    {
        Process::PrepareStreams();
        CommandLine commandLine;
        ExitStatus status = ExitStatus::Failure;
        ICommand* const command = commandLine.Parse(Process::Arguments(argc, argv), std::cout, std::cerr, status);
        if (command != nullptr)
        {
            ProgramRights::KeepOnlyFor(commandLine.Options().Session.Library);
            return static_cast<int>(Run(*command, commandLine.Options()));
        }
        if (!std::cout.flush().good())
        {
            throw std::system_error(errno, std::generic_category(), "cannot write to standard output");
        }
        return static_cast<int>(status);
    }
    catch (const std::exception& error)
    {
        std::cerr << "discovery-console: " << error.what() << '\n';
        return static_cast<int>(ExitStatus::Failure);
    }
}
