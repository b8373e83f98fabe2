#pragma once

#include "system/Int32.h"
#include "system/Interface.h"
#include "system/Object.h"

#include <cstdint>

namespace Zent::Discovery
{
/// Sends a broadcast once through each of several local addresses.
class IBroadcastProvider : public Nfx::System::Object, public Nfx::System::Interface
{
public:
    /// Broadcasts the first count bytes through every local address. A failing address is logged and skipped.
    virtual void Send(const std::uint8_t* bytes, Nfx::System::Int32 count) = 0;
};
} // namespace Zent::Discovery
