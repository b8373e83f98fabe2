#include "Application.h"
#include "CommandLine.h"
#include "Programs/Interruption.h"
#include "Programs/Process.h"
#include "Terminal.h"
#include "system/Exception.h"

#include <exception>
#include <iostream>

using namespace Zent::Discovery::Console;
using Zent::Discovery::Programs::Interruption;
using Zent::Discovery::Programs::Process;

namespace
{
ExitStatus Run(const Options& options)
{
    MessageQueue messages;
    const Interruption interruption([&messages] { messages.Interrupt(); });
    const Terminal out(Terminal::Stream::Output);
    const Terminal errors(Terminal::Stream::Errors);
    Output output(std::cout, std::cerr,
                  {options.Json, out.IsInteractive(), errors.IsInteractive(),
                   out.IsInteractive() ? out.Size().Width : TextTable::NoLimit});
    try
    {
        const ExitStatus status = Application(options, messages, output).Run();
        return std::cout.flush().good() ? status : ExitStatus::Failure;
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
    Process::PrepareStreams();
    ExitStatus status = ExitStatus::Failure;
    const std::optional<Options> options =
        CommandLine::Parse(Process::Arguments(argc, argv), std::cout, std::cerr, status);
    return static_cast<int>(options ? Run(*options) : status);
}
