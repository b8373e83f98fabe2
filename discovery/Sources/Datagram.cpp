#include "Discovery/Datagram.h"

namespace Zent::Discovery
{
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::Net::IPEndPoint;

Datagram::Datagram(const SmartPointer<String>& message, const IPEndPoint& remoteEndPoint)
    : Message(message)
    , RemoteEndPoint(SmartPointer<IPEndPoint>::Create(remoteEndPoint))
{
}
} // namespace Zent::Discovery
