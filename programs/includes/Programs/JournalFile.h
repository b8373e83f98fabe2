#pragma once

#include "Inventory/Journal.h"

#include <cstddef>
#include <functional>
#include <string>

namespace Zent::Discovery::Programs
{
/// The journal of changes in a file, which several programs may keep at the same time. Any thread.
class JournalFile final
{
public:
    /// A file that has grown beyond this is written anew with what the journal keeps, and stays that of its user; where
    /// the system refuses that, it grows on.
    static constexpr std::size_t MaximumBytes = 2 * Inventory::Journal::MaximumBytes;

    /// path is UTF-8. Nothing is touched yet.
    explicit JournalFile(std::string path);

    const std::string& Path() const { return path; }

    /// What the file holds; nothing when it is not there. complain is told of each line that is broken, as the last one
    /// is after a power cut, and left out.
    /// @throws std::runtime_error that names the file when it cannot be read.
    Inventory::Journal Read(const std::function<void(const std::string& text)>& complain) const;

    /// Appends a line and returns once the disk has it. Makes the file, which only its user may read, and its folder.
    /// @throws std::runtime_error that names the file when it cannot be written.
    void Append(const std::string& line) const;

private:
    std::string path;
};
} // namespace Zent::Discovery::Programs
