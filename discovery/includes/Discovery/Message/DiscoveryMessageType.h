#pragma once

#include "system/Enum.h"

namespace Zent::Discovery
{
/// The kinds of messages; the name is what travels.
class DiscoveryMessageType final : public Nfx::System::Enum<DiscoveryMessageType>
{
public:
    enum : std::int32_t
    {
        SignatureBroadcast = 0,
        Hello = 1,
        Bye = 2,
        ChangeYourIPConfig = 3,
        SendYourSignature = 4,
        AllSendYourSignature = 5,
        ChangeYourHostName = 6
    };

    static constexpr Nfx::System::EnumName Names[] = {{SignatureBroadcast, "SignatureBroadcast"},
                                                      {Hello, "Hello"},
                                                      {Bye, "Bye"},
                                                      {ChangeYourIPConfig, "ChangeYourIPConfig"},
                                                      {SendYourSignature, "SendYourSignature"},
                                                      {AllSendYourSignature, "AllSendYourSignature"},
                                                      {ChangeYourHostName, "ChangeYourHostName"}};

    using Enum::Enum;
};
} // namespace Zent::Discovery
