#pragma once

#include "Server/ServerAction.h"
#include "system/EventArgs.h"
#include "system/SmartPointer.h"

#include <cstdint>

namespace Zent::Discovery::Server
{
/// Carries an action from the parser or a request to the task processor.
class ServerActionArgs final : public Nfx::System::EventArgs
{
public:
    /// The size is that of the datagram that the action was made of, in bytes; 0 when there was none.
    /// @throws ArgumentNullException when the action is null.
    explicit ServerActionArgs(const Nfx::System::SmartPointer<ServerAction>& action, std::int64_t datagramSize = 0);

    const Nfx::System::SmartPointer<ServerAction>& Action() const noexcept { return action; }

    std::int64_t DatagramSize() const noexcept { return datagramSize; }

private:
    const Nfx::System::SmartPointer<ServerAction> action;
    const std::int64_t datagramSize;
};
} // namespace Zent::Discovery::Server
