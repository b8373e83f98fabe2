#include "endtoend/HostProgram.h"

#include "Signature.h"
#include "endtoend/Clock.h"

#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace Benchmarks
{
namespace
{
SharedState* state = nullptr; // set before the first callback
}

int HostProgram::Run(int argc, char** argv)
{
    if (argc < 5)
    {
        return EXIT_FAILURE;
    }
    // All of it at once: else its pages would seem to be memory that the host takes while it works.
    void* const memory =
        mmap(nullptr, sizeof(SharedState), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, std::atoi(argv[1]), 0);
    if (memory == MAP_FAILED)
    {
        return EXIT_FAILURE;
    }
    state = static_cast<SharedState*>(memory);
    Start(std::strcmp(argv[3], "Standard") == 0, argv[4], argc > 5 ? argv[5] : "");
    std::thread control([this, commands = std::atoi(argv[2])] {
        Serve(commands);
        Stop();
    });
    Receive();
    control.join();
    return EXIT_SUCCESS;
}

void HostProgram::Count(const char* document)
{
    const std::uint64_t number = Signature::NumberIn(document);
    state->CallBackTimes[number % SharedState::SampleCount].store(Now(), std::memory_order_relaxed);
    state->CallBacks.store(state->CallBacks.load(std::memory_order_relaxed) + 1, std::memory_order_release);
    while (state->Hold)
    {
        usleep(1000); // a futex of the standard library does not reach another process
    }
}

void HostProgram::Serve(int commands)
{
    char command = 'R'; // ready
    while (send(commands, &command, 1, MSG_NOSIGNAL) == 1 && read(commands, &command, 1) == 1 && command != 'Q')
    {
        command == 'D' ? TimeDiscover() : TimeCycles();
    }
}

void HostProgram::TimeDiscover()
{
    state->DiscoverStart = Now(CLOCK_REALTIME);
    const std::int64_t start = Now();
    Discover();
    state->DiscoverDuration = Now() - start;
}

void HostProgram::TimeCycles()
{
    for (std::atomic<std::int64_t>& duration : state->Cycles)
    {
        const std::int64_t start = Now();
        Cycle();
        duration = Now() - start;
    }
}
} // namespace Benchmarks
