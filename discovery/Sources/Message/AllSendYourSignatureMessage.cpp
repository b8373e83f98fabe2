#include "Discovery/Message/AllSendYourSignatureMessage.h"

namespace Zent::Discovery
{
AllSendYourSignatureMessage::AllSendYourSignatureMessage(const Nfx::System::Version& version)
    : DiscoveryMessage(version)
{
}

DiscoveryMessageType AllSendYourSignatureMessage::GetMessageType() const
{
    return DiscoveryMessageType::AllSendYourSignature;
}
} // namespace Zent::Discovery
