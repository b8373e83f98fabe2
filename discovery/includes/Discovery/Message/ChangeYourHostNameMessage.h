#pragma once

#include "Discovery/MACAddress.h"
#include "Discovery/Message/DiscoveryMessage.h"
#include "system/String.h"

namespace Zent::Discovery
{
/// Gives one device a new host name.
class ChangeYourHostNameMessage final : public DiscoveryMessage
{
public:
    /// A broadcast with the MAC address 00:00:00:00:00:00, as are the forms with a version unless they name a target.
    ChangeYourHostNameMessage() = default;
    explicit ChangeYourHostNameMessage(const Nfx::System::Version& version);
    ChangeYourHostNameMessage(const Nfx::System::Version& version, const Nfx::System::String& newHostName);
    ChangeYourHostNameMessage(const Nfx::System::Version& version,
                              const MACAddress& target,
                              const Nfx::System::String& newHostName);

    /// No broadcast: meant for the device that has this MAC address.
    ChangeYourHostNameMessage(const MACAddress& target, const Nfx::System::String& newHostName);

    void Serialize(Utils::Json::JSONStringer& stringer) const override;
    DiscoveryMessageType GetMessageType() const override;
    void ReadFrom(const Utils::Json::JSONObject& json) override;

    Nfx::System::String NewHostName;
    MACAddress TargetedMACAddress;
};
} // namespace Zent::Discovery
