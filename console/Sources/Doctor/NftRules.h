#pragma once

#include "Doctor/Observations.h"

#include <cstdint>
#include <string_view>

namespace Zent::Discovery::Console::Doctor
{
/// Judges the packet filter's rules as "nft list ruleset" prints them. Pure: it runs nothing.
class NftRules final
{
public:
    NftRules() = delete;

    /// What the rules do with a UDP datagram to the port that comes from a device that was not written to. Rules with
    /// conditions that it does not know, such as addresses, make that unclear when it depends on them.
    static FirewallState Judge(std::string_view ruleSet, std::uint16_t port);
};
} // namespace Zent::Discovery::Console::Doctor
