#pragma once

#include "Doctor/Observations.h"

#include <string>
#include <vector>

namespace Zent::Discovery::Console::Doctor
{
/// Judges the rules of the Windows firewall as the registry holds them. Pure: it reads no registry.
class WindowsRules final
{
public:
    WindowsRules() = delete;

    /// What a firewall that is on does with datagrams to UDP port 12001 for the program. A rule reads like
    /// v2.10|Action=Allow|Active=TRUE|Dir=In|Protocol=17|LPort=12001|App=C:\host.exe|
    static FirewallState Judge(const std::vector<std::string>& rules, const std::string& program);
};
} // namespace Zent::Discovery::Console::Doctor
