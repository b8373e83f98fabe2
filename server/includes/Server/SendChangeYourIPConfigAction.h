#pragma once

#include "Discovery/Message/ChangeYourIPConfigMessage.h"
#include "Server/ServerAction.h"
#include "system/SmartPointer.h"

namespace Zent::Discovery::Server
{
/// Gives network interfaces new settings; each device picks those that carry one of its MAC addresses.
class SendChangeYourIPConfigAction final : public ServerAction
{
public:
    using NICConfigList = ChangeYourIPConfigMessage::NICConfigList;

    /// The list must not change afterwards.
    explicit SendChangeYourIPConfigAction(const Nfx::System::SmartPointer<NICConfigList>& nicConfigs)
        : ServerAction(ServerActionType::SendChangeYourIPConfigMessage)
        , nicConfigs(nicConfigs)
    {
    }

    const Nfx::System::SmartPointer<NICConfigList>& NICConfigs() const noexcept { return nicConfigs; }

private:
    const Nfx::System::SmartPointer<NICConfigList> nicConfigs;
};
} // namespace Zent::Discovery::Server
