#pragma once

#include "Discovery/Message/DiscoveryMessage.h"

namespace Zent::Discovery
{
/// Asks every device for its signature.
class AllSendYourSignatureMessage final : public DiscoveryMessage
{
public:
    AllSendYourSignatureMessage() = default;
    explicit AllSendYourSignatureMessage(const Nfx::System::Version& version);

    DiscoveryMessageType GetMessageType() const override;
};
} // namespace Zent::Discovery
