#pragma once

#include "endtoend/SharedState.h"

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Benchmarks
{
/// What the bench measures.
struct Contender
{
    std::string Program;
    std::string Library; // empty for the limit program
};

enum class Level
{
    None,
    Standard
};

/// What becomes of the right to the real-time class that the bench may have.
enum class Rights
{
    Given,
    Taken
};

/// A running host program. The destructor ends it.
class HostProcess final
{
public:
    /// Returns once the program receives. The log goes to a file of its own in the folder.
    /// @throws std::runtime_error when the program does not start.
    HostProcess(const Contender& contender, Level level, const std::string& folder, Rights rights = Rights::Given);
    ~HostProcess();
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    SharedState& State() const noexcept { return *state; }

    std::uint64_t CallBacks() const noexcept { return state->CallBacks.load(std::memory_order_acquire); }

    /// Waits until there were no callbacks for a while, or as many as wanted.
    void AwaitQuiet(std::uint64_t wanted) const;

    void Discover() { Ask('D'); }

    void Cycle() { Ask('C'); }

    /// Nanoseconds that all its threads have run so far.
    std::int64_t CpuTime() const;

    /// Bytes: of memory that is resident now, and of the most that ever was.
    std::int64_t Resident() const;
    std::int64_t PeakResident() const;

private:
    void Ask(char command);
    void AwaitAnswer();
    std::int64_t Status(const std::string& field) const;

    SharedState* state = nullptr;
    int commands = -1;
    pid_t process = -1;
};
} // namespace Benchmarks
