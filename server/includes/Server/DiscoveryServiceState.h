#pragma once

#include "system/Enum.h"

namespace Zent::Discovery::Server
{
/// Where the server is in its life.
class DiscoveryServiceState final : public Nfx::System::Enum<DiscoveryServiceState>
{
public:
    enum : std::int32_t
    {
        Unstarted = 0,
        Starting = 1,
        Running = 2,
        Stopping = 3,
        Stopped = 4
    };

    static constexpr Nfx::System::EnumName Names[] = {{Unstarted, "Unstarted"},
                                                      {Starting, "Starting"},
                                                      {Running, "Running"},
                                                      {Stopping, "Stopping"},
                                                      {Stopped, "Stopped"}};

    using Enum::Enum;
};
} // namespace Zent::Discovery::Server
