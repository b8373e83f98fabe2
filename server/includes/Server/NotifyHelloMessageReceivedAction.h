#pragma once

#include "Discovery/Message/HelloMessage.h"
#include "Server/ServerAction.h"
#include "system/SmartPointer.h"

namespace Zent::Discovery::Server
{
/// Tells the host application that a device has come.
class NotifyHelloMessageReceivedAction final : public ServerAction
{
public:
    explicit NotifyHelloMessageReceivedAction(const Nfx::System::SmartPointer<HelloMessage>& message)
        : ServerAction(ServerActionType::NotifyHelloMessageReceived)
        , message(message)
    {
    }

    const Nfx::System::SmartPointer<HelloMessage>& Message() const noexcept { return message; }

private:
    const Nfx::System::SmartPointer<HelloMessage> message;
};
} // namespace Zent::Discovery::Server
