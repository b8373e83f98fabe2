#include "support/FuzzTarget.h"

#include "system/Memory.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <new>
#include <sanitizer/asan_interface.h>

using Fuzzing::AllocationFaults;
using Nfx::System::Memory;

namespace
{
void OnTerminate();

const std::terminate_handler defaultTerminateHandler = std::set_terminate(&OnTerminate);

void OnTerminate()
{
    AllocationFaults::Stop();
    defaultTerminateHandler();
}

/// Ends the program with a finding.
[[noreturn]] void Report(const char* what)
{
    AllocationFaults::Stop();
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

/// Runs an input without failures. Returns how many allocations it makes.
std::size_t RunUndisturbed(std::string_view input)
{
    const AllocationFaults counter;
    Fuzzing::Fuzz(input);
    return counter.Count();
}

void RunWithFault(std::string_view input, std::size_t number, bool lasting)
{
    const AllocationFaults faults(number, lasting);
    try
    {
        Fuzzing::Fuzz(input);
    }
    catch (const Nfx::System::Exception&)
    {
        Fuzzing::Check(false, "nothing is thrown while there is memory");
    }
    catch (const std::bad_alloc&)
    {
    }
}
} // namespace

void Fuzzing::Check(bool condition, const char* what)
{
    if (!condition && !AllocationFaults::HaveOccurred())
    {
        Report(what);
    }
}

extern "C"
{
    // The sanitizers call these when they have something to report.
    void __ubsan_on_report();

    void __ubsan_on_report()
    {
        AllocationFaults::Stop();
    }

    void __asan_on_error()
    {
        AllocationFaults::Stop();
    }

    int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
    {
        const std::string_view input(reinterpret_cast<const char*>(data), size);
        const std::int64_t before = Memory::LiveCount();
        const std::size_t allocations = RunUndisturbed(input);
        if (allocations > 0)
        {
            const std::size_t choice = std::hash<std::string_view>()(input);
            RunWithFault(input, 1 + choice / 2 % allocations, choice % 2 != 0);
        }
        if (Memory::LiveCount() != before)
        {
            Report("tracked memory is given back");
        }
        return 0;
    }
}
