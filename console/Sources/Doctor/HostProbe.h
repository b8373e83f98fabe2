#pragma once

#include "Doctor/Observations.h"

#include <string>

namespace Zent::Discovery::Console::Doctor
{
/// What only the system can tell. Main thread only.
class HostProbe final
{
public:
    HostProbe() = delete;

    static Observations::Systems System();

    /// What the firewall does with answers of devices, as far as the user may know.
    static FirewallState Firewall();

    /// Makes a folder for temporary files that other users cannot look into.
    /// @throws std::system_error when the system refuses.
    static std::string MakePrivateFolder();
};
} // namespace Zent::Discovery::Console::Doctor
