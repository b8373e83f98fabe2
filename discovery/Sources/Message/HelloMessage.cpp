#include "Discovery/Message/HelloMessage.h"

namespace Zent::Discovery
{
DiscoveryMessageType HelloMessage::GetMessageType() const
{
    return DiscoveryMessageType::Hello;
}
} // namespace Zent::Discovery
