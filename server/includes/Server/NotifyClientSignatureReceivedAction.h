#pragma once

#include "Discovery/Message/SignatureBroadcastMessage.h"
#include "Server/ServerAction.h"
#include "system/SmartPointer.h"

namespace Zent::Discovery::Server
{
/// Tells the host application of a signature.
class NotifyClientSignatureReceivedAction final : public ServerAction
{
public:
    explicit NotifyClientSignatureReceivedAction(const Nfx::System::SmartPointer<SignatureBroadcastMessage>& message)
        : ServerAction(ServerActionType::NotifyClientSignatureReceived)
        , message(message)
    {
    }

    const Nfx::System::SmartPointer<SignatureBroadcastMessage>& Message() const noexcept { return message; }

private:
    const Nfx::System::SmartPointer<SignatureBroadcastMessage> message;
};
} // namespace Zent::Discovery::Server
