#pragma once

#include "system/Enum.h"

namespace Zent::Discovery::Server
{
/// What the task processor is asked to do.
class ServerActionType final : public Nfx::System::Enum<ServerActionType>
{
public:
    enum : std::int32_t
    {
        SendSendYourSignatureMessage = 0,
        SendAllSendYourSignatureMessage = 1,
        SendChangeYourIPConfigMessage = 2,
        SendChangeYourHostNameMessage = 3,
        NotifyClientSignatureReceived = 4,
        NotifyHelloMessageReceived = 5,
        NotifyByeMessageReceived = 6
    };

    static constexpr Nfx::System::EnumName Names[] = {
        {SendSendYourSignatureMessage, "SendSendYourSignatureMessage"},
        {SendAllSendYourSignatureMessage, "SendAllSendYourSignatureMessage"},
        {SendChangeYourIPConfigMessage, "SendChangeYourIPConfigMessage"},
        {SendChangeYourHostNameMessage, "SendChangeYourHostNameMessage"},
        {NotifyClientSignatureReceived, "NotifyClientSignatureReceived"},
        {NotifyHelloMessageReceived, "NotifyHelloMessageReceived"},
        {NotifyByeMessageReceived, "NotifyByeMessageReceived"}};

    using Enum::Enum;
};
} // namespace Zent::Discovery::Server
