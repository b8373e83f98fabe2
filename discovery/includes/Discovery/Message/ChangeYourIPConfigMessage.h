#pragma once

#include "Discovery/Message/DiscoveryMessage.h"
#include "Discovery/NICConfig.h"
#include "system/Collections/Generic/List.h"
#include "system/SmartPointer.h"

namespace Zent::Discovery
{
/// Gives devices new network settings: each device takes those with the MAC address of one of its interfaces, so the
/// message is always a broadcast.
class ChangeYourIPConfigMessage final : public DiscoveryMessage
{
public:
    using NICConfigList = Nfx::System::Collections::Generic::List<Nfx::System::SmartPointer<NICConfig>>;

    ChangeYourIPConfigMessage() = default;
    explicit ChangeYourIPConfigMessage(const Nfx::System::Version& version);
    explicit ChangeYourIPConfigMessage(const NICConfigList& newNICConfigs);
    ChangeYourIPConfigMessage(const Nfx::System::Version& version, const NICConfigList& newNICConfigs);

    void Serialize(Utils::Json::JSONStringer& stringer) const override;
    DiscoveryMessageType GetMessageType() const override;

    /// Elements that are no good settings are left out. Each of the first 64 has a line in the log, and one line more
    /// tells how many follow.
    void ReadFrom(const Utils::Json::JSONObject& json) override;

    NICConfigList NewNICConfigs;
};
} // namespace Zent::Discovery
