#pragma once

#include "Server/ServerAction.h"

namespace Zent::Discovery::Server
{
/// Asks every device for its signature.
class SendAllSendYourSignatureAction final : public ServerAction
{
public:
    SendAllSendYourSignatureAction() noexcept
        : ServerAction(ServerActionType::SendAllSendYourSignatureMessage)
    {
    }
};
} // namespace Zent::Discovery::Server
