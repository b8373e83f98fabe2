#include "Discovery/Message/ByeMessage.h"

namespace Zent::Discovery
{
DiscoveryMessageType ByeMessage::GetMessageType() const
{
    return DiscoveryMessageType::Bye;
}
} // namespace Zent::Discovery
