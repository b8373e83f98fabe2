#include "support/FuzzTarget.h"

#include "support/MemoryFaults.h"
#include "system/Memory.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <new>
#include <sanitizer/asan_interface.h>

using Nfx::System::Memory;
using Tests::MemoryFaults;

namespace
{
void OnTerminate();

const std::terminate_handler defaultTerminateHandler = std::set_terminate(&OnTerminate);

void OnTerminate()
{
    MemoryFaults::Clear();
    defaultTerminateHandler();
}

/// Ends the program with a finding.
[[noreturn]] void Report(const char* what)
{
    MemoryFaults::Clear();
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

/// Runs an input without failures. Returns how many allocations it makes.
int RunUndisturbed(std::string_view input)
{
    MemoryFaults::Fail(MemoryFaults::Always);
    Fuzzing::Fuzz(input);
    MemoryFaults::Clear();
    return MemoryFaults::Seen();
}

void RunWithFault(std::string_view input, int number, bool lasting)
{
    MemoryFaults::Fail(number, lasting ? MemoryFaults::Always : 1);
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
    MemoryFaults::Clear();
}
} // namespace

void Fuzzing::Check(bool condition, const char* what)
{
    if (!condition && MemoryFaults::Failed() == 0)
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
        MemoryFaults::Clear();
    }

    void __asan_on_error()
    {
        MemoryFaults::Clear();
    }

    int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
    {
        const std::string_view input(reinterpret_cast<const char*>(data), size);
        const std::int64_t before = Memory::LiveCount();
        const int allocations = RunUndisturbed(input);
        if (allocations > 0)
        {
            const std::size_t choice = std::hash<std::string_view>()(input);
            RunWithFault(input, 1 + static_cast<int>(choice / 2 % static_cast<std::size_t>(allocations)),
                         choice % 2 != 0);
        }
        if (Memory::LiveCount() != before)
        {
            Report("tracked memory is given back");
        }
        return 0;
    }
}
