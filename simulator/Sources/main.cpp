#include "CommandLine.h"
#include "Programs/Interruption.h"
#include "Programs/Process.h"
#include "Simulation.h"
#include "system/Exception.h"

#include <exception>
#include <iostream>
#include <string>
#include <thread>

using namespace Zent::Discovery::Simulator;
using Zent::Discovery::Programs::Interruption;
using Zent::Discovery::Programs::Process;

namespace
{
/// Never destroyed: the thread that reads standard input may last until the process ends.
RequestQueue& Requests(const SimulationOptions& options)
{
    static RequestQueue& requests = *new RequestQueue(options.Delay);
    return requests;
}

void Run(const SimulationOptions& options)
{
    RequestQueue& requests = Requests(options);
    const Interruption interruption([&requests] { requests.Close(); });
    Simulation simulation(options, requests, std::cout);
    if (options.EndsWithInput)
    {
        std::thread([&requests] {
            Process::WaitForEndOfInput();
            requests.Close();
        }).detach();
    }
    simulation.Run();
}
} // namespace

int main(int argc, char* argv[])
{
    Process::PrepareStreams();
    int status = 0;
    const std::optional<SimulationOptions> options =
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
