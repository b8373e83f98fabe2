#pragma once

#include "system/Net/IPAddress.h"
#include "system/String.h"

namespace Zent::Discovery::Simulator
{
/// A datagram that came in.
struct Request
{
    Nfx::System::String Text;
    Nfx::System::Net::IPAddress Sender;
    Nfx::System::Net::IPAddress Destination; // the address that the sender has sent it to
};
} // namespace Zent::Discovery::Simulator
