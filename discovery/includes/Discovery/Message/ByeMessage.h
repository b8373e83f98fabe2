#pragma once

#include "Discovery/Message/SignatureBroadcastMessage.h"

namespace Zent::Discovery
{
/// A device leaves.
class ByeMessage final : public SignatureBroadcastMessage
{
public:
    using SignatureBroadcastMessage::SignatureBroadcastMessage;

    DiscoveryMessageType GetMessageType() const override;
};
} // namespace Zent::Discovery
