#pragma once

#include "Discovery/Message/SignatureBroadcastMessage.h"

namespace Zent::Discovery
{
/// A device announces itself.
class HelloMessage final : public SignatureBroadcastMessage
{
public:
    using SignatureBroadcastMessage::SignatureBroadcastMessage;

    DiscoveryMessageType GetMessageType() const override;
};
} // namespace Zent::Discovery
