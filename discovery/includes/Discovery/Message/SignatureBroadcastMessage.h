#pragma once

#include "Discovery/DiscoveryHost.h"
#include "Discovery/Message/DiscoveryMessage.h"
#include "Discovery/NICConfig.h"
#include "system/SmartPointer.h"

namespace Zent::Discovery
{
/// A device's answer to a request: its description.
class SignatureBroadcastMessage : public DiscoveryMessage
{
public:
    SignatureBroadcastMessage() = default;
    explicit SignatureBroadcastMessage(const Nfx::System::Version& version);

    /// sourceNIC may be empty.
    SignatureBroadcastMessage(const Nfx::System::SmartPointer<DiscoveryHost>& host,
                              const Nfx::System::SmartPointer<NICConfig>& sourceNIC);

    /// Leaves an empty source NIC out.
    /// @throws NullPointerException when there is no host.
    void Serialize(Utils::Json::JSONStringer& stringer) const override;
    DiscoveryMessageType GetMessageType() const override;

    /// A missing or bad source NIC is logged and left empty.
    void ReadFrom(const Utils::Json::JSONObject& json) override;

    Nfx::System::SmartPointer<DiscoveryHost> Host;
    Nfx::System::SmartPointer<NICConfig> SourceNIC; // the interface that sent the message; may be empty

private:
    void ReadSourceNIC(const Utils::Json::JSONObject& json);
};
} // namespace Zent::Discovery
