#pragma once

#include "Discovery/DiscoveryHost.h"
#include "system/Net/IPAddress.h"
#include "system/SmartPointer.h"

#include <cstddef>
#include <cstdint>

namespace Zent::Discovery::Simulator
{
/// Invents devices. A device depends on the seed and its number alone, not on how many others there are.
class DeviceFactory final
{
public:
    explicit DeviceFactory(std::uint64_t seed);

    /// The device with that number, from 0 on; its first interface has the address. Numbers up to 65535 have different
    /// names and MAC addresses.
    Nfx::System::SmartPointer<DiscoveryHost> Create(std::size_t number,
                                                    const Nfx::System::Net::IPAddress& address,
                                                    const Nfx::System::Net::IPAddress& subNetMask) const;

private:
    const std::uint64_t seed;
};
} // namespace Zent::Discovery::Simulator
