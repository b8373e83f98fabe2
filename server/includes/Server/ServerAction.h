#pragma once

#include "system/Enum.h"
#include "system/EventArgs.h"
#include "system/Object.h"
#include "system/SmartPointer.h"

#include <cstdint>

namespace Zent::Discovery::Server
{
class IServerActionHandler;

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

/// One unit of work for the task processor. Constant after construction; shared between threads.
class ServerAction : public Nfx::System::Object
{
public:
    const ServerActionType& Type() const noexcept { return type; }

    /// Calls the handler's operation for this class of actions.
    virtual void HandleBy(IServerActionHandler& handler) const = 0;

protected:
    explicit ServerAction(const ServerActionType& type) noexcept
        : type(type)
    {
    }

private:
    const ServerActionType type;
};

/// Carries an action from the parser or a request to the task processor.
class ServerActionArgs final : public Nfx::System::EventArgs
{
public:
    /// The size is that of the datagram that the action was made of, in bytes; 0 when there was none.
    /// @throws ArgumentNullException when the action is null.
    explicit ServerActionArgs(const Nfx::System::SmartPointer<ServerAction>& action, std::int64_t datagramSize = 0)
        : action(action)
        , datagramSize(datagramSize)
    {
        if (action.IsNull())
        {
            throw Nfx::System::ArgumentNullException("server/includes/Server/ServerAction", __LINE__);
        }
    }

    const Nfx::System::SmartPointer<ServerAction>& Action() const noexcept { return action; }

    std::int64_t DatagramSize() const noexcept { return datagramSize; }

private:
    const Nfx::System::SmartPointer<ServerAction> action;
    const std::int64_t datagramSize;
};
} // namespace Zent::Discovery::Server
