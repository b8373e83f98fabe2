#include "endtoend/HostProcess.h"

#include "endtoend/Clock.h"

#include <fstream>
#include <linux/capability.h>
#include <new>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Benchmarks
{
namespace
{
constexpr std::int64_t QuietNanoseconds = 60'000'000;

[[noreturn]] void Fail(const char* what)
{
    throw std::runtime_error(what);
}

/// A program that this process becomes may not enter the real-time class, nor rise above the ordinary priority.
void GiveUpRealTime()
{
    prctl(PR_CAPBSET_DROP, CAP_SYS_NICE); // refused to those who have no rights to lose
    constexpr rlimit nothing{0, 0};
    setrlimit(RLIMIT_RTPRIO, &nothing);
    setrlimit(RLIMIT_NICE, &nothing);
}
} // namespace

HostProcess::HostProcess(const Contender& contender, Level level, const std::string& folder, Rights rights)
{
    const int memory = memfd_create("bench", 0);
    int ends[2];
    if (memory < 0 || ftruncate(memory, sizeof(SharedState)) != 0 || socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0)
    {
        Fail("no shared memory or sockets");
    }
    void* const mapped = mmap(nullptr, sizeof(SharedState), PROT_READ | PROT_WRITE, MAP_SHARED, memory, 0);
    if (mapped == MAP_FAILED)
    {
        Fail("no shared memory");
    }
    state = new (mapped) SharedState();
    commands = ends[0];
    const std::string memoryText = std::to_string(memory);
    const std::string commandText = std::to_string(ends[1]);
    const std::string log = folder + (contender.Library.empty() ? "/limit.log" : "/library.log");
    unlink(log.c_str());
    process = fork();
    if (process == 0)
    {
        close(ends[0]);
        if (rights == Rights::Taken)
        {
            GiveUpRealTime();
        }
        execl(contender.Program.c_str(), contender.Program.c_str(), memoryText.c_str(), commandText.c_str(),
              level == Level::Standard ? "Standard" : "None", log.c_str(), contender.Library.c_str(), nullptr);
        _exit(127);
    }
    close(ends[1]);
    close(memory);
    if (process < 0)
    {
        Fail("no new process");
    }
    AwaitAnswer();
}

HostProcess::~HostProcess()
{
    const char goodbye = 'Q';
    if (send(commands, &goodbye, 1, MSG_NOSIGNAL) == 1)
    {
        waitpid(process, nullptr, 0);
    }
    close(commands);
    munmap(state, sizeof(SharedState));
}

void HostProcess::AwaitQuiet(std::uint64_t wanted) const
{
    std::uint64_t seen = CallBacks();
    std::int64_t change = Now();
    while (seen < wanted && Now() - change < QuietNanoseconds)
    {
        usleep(500);
        const std::uint64_t current = CallBacks();
        change = current == seen ? change : Now();
        seen = current;
    }
}

std::int64_t HostProcess::CpuTime() const
{
    clockid_t clock = 0;
    if (clock_getcpuclockid(process, &clock) != 0)
    {
        Fail("the host program has no clock");
    }
    return Now(clock);
}

std::int64_t HostProcess::Resident() const
{
    return Status("VmRSS:");
}

std::int64_t HostProcess::PeakResident() const
{
    return Status("VmHWM:");
}

void HostProcess::Ask(char command)
{
    if (send(commands, &command, 1, MSG_NOSIGNAL) != 1)
    {
        Fail("the host program has ended");
    }
    AwaitAnswer();
}

void HostProcess::AwaitAnswer()
{
    char answer = 0;
    if (read(commands, &answer, 1) != 1)
    {
        Fail("the host program has ended");
    }
}

std::int64_t HostProcess::Status(const std::string& field) const
{
    std::ifstream file("/proc/" + std::to_string(process) + "/status");
    for (std::string word; file >> word;)
    {
        std::int64_t kibibytes = 0;
        if (word == field && file >> kibibytes)
        {
            return kibibytes * 1024;
        }
    }
    Fail("the host program's memory is unknown");
}
} // namespace Benchmarks
