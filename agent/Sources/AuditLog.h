#pragma once

#include <cstddef>
#include <string>

namespace Zent::Discovery::Agent
{
class Log;

/// The file in which each command stands with its verdict, a JSON object a line. When it is full it becomes
/// commands.log.1, in the place of an older one. One thread.
class AuditLog final
{
public:
    static constexpr std::size_t MaximumBytes = std::size_t{8} * 1024 * 1024;

    /// In that folder; without one the lines go to the log alone. log must outlive the object.
    /// @throws std::runtime_error when the file cannot be opened: commands without traces are none.
    AuditLog(const std::string& folder, Log& log);

    void Write(const std::string& line);

private:
    const std::string path;
    Log& log;
};
} // namespace Zent::Discovery::Agent
