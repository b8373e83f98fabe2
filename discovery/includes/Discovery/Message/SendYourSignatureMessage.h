#pragma once

#include "Discovery/MACAddress.h"
#include "Discovery/Message/DiscoveryMessage.h"

namespace Zent::Discovery
{
/// Asks one device for its signature.
class SendYourSignatureMessage final : public DiscoveryMessage
{
public:
    /// A broadcast with the MAC address 00:00:00:00:00:00, as are the forms with a version.
    SendYourSignatureMessage() = default;
    explicit SendYourSignatureMessage(const Nfx::System::Version& version);
    SendYourSignatureMessage(const Nfx::System::Version& version, const MACAddress& target);

    /// No broadcast: meant for the device that has this MAC address.
    explicit SendYourSignatureMessage(const MACAddress& target);

    void Serialize(Utils::Json::JSONStringer& stringer) const override;
    DiscoveryMessageType GetMessageType() const override;
    void ReadFrom(const Utils::Json::JSONObject& json) override;

    MACAddress TargetedMACAddress;
};
} // namespace Zent::Discovery
