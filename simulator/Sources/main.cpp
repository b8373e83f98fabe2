#include "CommandLine.h"
#include "Inbox.h"
#include "Programs/Interruption.h"
#include "Programs/Process.h"
#include "Programs/WrongArgument.h"
#include "Simulation.h"
#include "system/Exception.h"

#include <exception>
#include <iostream>
#include <string>
#include <thread>
#include <utility>

using namespace Zent::Discovery::Simulator;
using Zent::Discovery::Programs::Interruption;
using Zent::Discovery::Programs::Process;

namespace
{
/// Never destroyed: the thread that reads standard input may last until the process ends.
Inbox& TheInbox()
{
    static Inbox& inbox = *new Inbox();
    return inbox;
}

void ReadInput(bool endsWithInput)
{
    Process::ReadInput([isTold = false](const std::string& line) mutable {
        if (!TheInbox().Push(line) && !std::exchange(isTold, true))
        {
            std::cerr << "device-simulator: standard input: too many lines wait, dropped \"" + line +
                             "\"; further ones are dropped without a word\n";
        }
    });
    if (endsWithInput)
    {
        TheInbox().Close();
    }
}

void Run(const ProgramOptions& options)
{
    const Interruption interruption([] { TheInbox().Close(); });
    if (!options.Recording.Path.empty())
    {
        std::thread(ReadInput, options.EndsWithInput).detach();
        Recorder::Run(options.Recording, TheInbox(), std::cout);
        return;
    }
    Simulation simulation(options.Simulation, TheInbox(), std::cout);
    std::thread(ReadInput, options.EndsWithInput).detach();
    simulation.Run();
}
} // namespace

int main(int argc, char* argv[])
{
    Process::PrepareStreams();
    int status = 0;
    const std::optional<ProgramOptions> options =
        CommandLine::Parse(Process::Arguments(argc, argv), std::cout, std::cerr, status);
    if (!options)
    {
        return status;
    }
    try
    {
        Run(*options);
        return 0;
    }
    catch (const Zent::Discovery::Programs::WrongArgument& error)
    {
        std::cerr << "device-simulator: " << error.what() << '\n';
        return 2;
    }
    catch (const std::exception& error)
    {
        std::cerr << "device-simulator: " << error.what() << '\n';
    }
    catch (const Nfx::System::Exception& error)
    {
        std::cerr << "device-simulator: " << error.GetMessage().View() << '\n';
    }
    return 1;
}
