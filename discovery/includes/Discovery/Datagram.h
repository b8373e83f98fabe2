#pragma once

#include "system/Net/IPEndPoint.h"
#include "system/SmartPointer.h"
#include "system/String.h"

namespace Zent::Discovery
{
/// A received message and its sender. Constant after construction.
class Datagram final : public Nfx::System::Object
{
public:
    /// Takes a copy of the sender's end point, which the receiver overwrites with the next datagram.
    Datagram(const Nfx::System::SmartPointer<Nfx::System::String>& message,
             const Nfx::System::Net::IPEndPoint& remoteEndPoint);

    /// The payload, one character per byte.
    const Nfx::System::SmartPointer<Nfx::System::String> Message;

    const Nfx::System::SmartPointer<Nfx::System::Net::IPEndPoint> RemoteEndPoint;
};
} // namespace Zent::Discovery
