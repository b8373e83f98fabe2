#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// What the program needs from the system it runs on. Main thread only.
class HostPlatform final
{
public:
    HostPlatform() = delete;

    /// Where the library lies in an installation: found from the program's own place.
    static std::string DefaultLibraryPath();

    /// A log of the user's own; its folder need not exist. Where users have no folder of their own there is no log.
    static std::string DefaultLogPath();

    /// A journal of changes in the same folder; empty where users have none.
    static std::string DefaultJournalPath();

    /// The local time of day, such as 14:07:09.
    static std::string TimeOfDay(std::chrono::system_clock::time_point time);

    /// The name and the version of the system, for people.
    static std::string SystemVersion();

    /// What this machine and its user are called, as far as that tells who they are.
    static std::vector<std::string> OwnNames();

    /// Empty when it is not set.
    static std::string EnvironmentVariable(const char* name);
};
} // namespace Zent::Discovery::Console
