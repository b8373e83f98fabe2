#pragma once

#include <cstddef>
#include <functional>
#include <span>
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

    /// The path of a file that takes everything and keeps nothing.
    static std::string NullDevice();

    /// Lets standard output show UTF-8, and makes writing to a closed pipe an error instead of the end of the program.
    static void PrepareStreams();

    /// Calls take with each line of standard input, without its line end, until the input has ended. A program in the
    /// background of a terminal has none. Does not hold the standard streams' locks, so the process may end meanwhile.
    /// A line of more than MaximumLineBytes comes in pieces. Any thread, but one at a time.
    static void ReadInput(const std::function<void(const std::string& line)>& take);

    static constexpr std::size_t MaximumLineBytes = 4096;

    /// All that comes from standard input until it ends, byte for byte. Otherwise as ReadInput.
    static std::string ReadAllInput();

private:
    /// Waits for more of standard input, and returns how much of the buffer it fills; 0 at the end.
    static std::size_t ReadSome(std::span<char> buffer);
};
} // namespace Zent::Discovery::Programs
