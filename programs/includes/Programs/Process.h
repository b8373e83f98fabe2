#pragma once

#include <string>
#include <vector>

namespace Zent::Discovery::Programs
{
/// What a program needs from the system to run. Main thread only, unless said otherwise.
class Process final
{
public:
    Process() = delete;

    /// The arguments of the program in UTF-8, without its name; count and values are those of main.
    static std::vector<std::string> Arguments(int count, const char* const* values);

    /// Lets standard output show UTF-8, and makes writing to a closed pipe an error instead of the end of the program.
    static void PrepareStreams();

    /// Returns when standard input has ended; what comes before is dropped. Does not hold the standard streams' locks,
    /// so the process may end meanwhile. Any thread.
    static void WaitForEndOfInput();
};
} // namespace Zent::Discovery::Programs
