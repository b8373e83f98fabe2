#pragma once

#include "Programs/LogReader.h"

#include <array>
#include <string>

namespace Zent::Discovery::Agent
{
/// A log for the library that keeps nothing: a pipe, from which the agent learns what the library has dropped. While it
/// is full the library loses lines instead of waiting. One thread.
class LibraryLog final
{
public:
    /// @throws std::system_error when there are no descriptors left.
    LibraryLog();
    ~LibraryLog();

    LibraryLog(const LibraryLog&) = delete;
    LibraryLog& operator=(const LibraryLog&) = delete;

    /// Where the library is to write to, at level Critical, which tells of all that is dropped.
    std::string Path() const;

    /// What was dropped so far; takes the lines that have come since.
    const Programs::LogSummary& Read();

private:
    std::array<int, 2> ends{}; // to read from and to write to
    Programs::LogReader reader;
    std::string unfinished; // line
};
} // namespace Zent::Discovery::Agent
