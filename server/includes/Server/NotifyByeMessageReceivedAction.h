#pragma once

#include "Discovery/Message/ByeMessage.h"
#include "Server/ServerAction.h"
#include "system/SmartPointer.h"

namespace Zent::Discovery::Server
{
/// Tells the host application that a device leaves.
class NotifyByeMessageReceivedAction final : public ServerAction
{
public:
    explicit NotifyByeMessageReceivedAction(const Nfx::System::SmartPointer<ByeMessage>& message)
        : ServerAction(ServerActionType::NotifyByeMessageReceived)
        , message(message)
    {
    }

    const Nfx::System::SmartPointer<ByeMessage>& Message() const noexcept { return message; }

private:
    const Nfx::System::SmartPointer<ByeMessage> message;
};
} // namespace Zent::Discovery::Server
