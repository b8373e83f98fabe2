#pragma once

#include <cstddef>

namespace Zent::Discovery::Console
{
/// One of the standard streams, which may be a terminal. Main thread only.
class Terminal final
{
public:
    enum class Stream
    {
        Output,
        Errors
    };

    struct Dimensions
    {
        std::size_t Width;
        std::size_t Height;
    };

    /// Makes the terminal act on control sequences where that is its user's choice.
    explicit Terminal(Stream stream);

    /// Leaves the terminal as it was.
    ~Terminal();

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Whether the stream is a terminal that acts on control sequences.
    bool IsInteractive() const;

    /// As it is now; 80 by 24 when the system does not tell.
    Dimensions Size() const;

    /// From now on writes the text leave before the user suspends the program, and enter when it goes on. Both are
    /// literals; nullptr ends it.
    static void RestoreWhenSuspended(const char* leave, const char* enter);

private:
    const Stream stream;
    unsigned long formerMode = 0; // of the terminal, where it has one
    bool hasMode = false;
    bool isInteractive = false;
};
} // namespace Zent::Discovery::Console
