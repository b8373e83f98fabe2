#pragma once

#include "Server/ServerAction.h"
#include "system/EventArgs.h"
#include "system/SmartPointer.h"

namespace Zent::Discovery::Server
{
/// Carries an action from the parser or a request to the task processor.
class ServerActionArgs final : public Nfx::System::EventArgs
{
public:
    /// @throws ArgumentNullException when the action is null.
    explicit ServerActionArgs(const Nfx::System::SmartPointer<ServerAction>& action);

    const Nfx::System::SmartPointer<ServerAction>& Action() const noexcept { return action; }

private:
    const Nfx::System::SmartPointer<ServerAction> action;
};
} // namespace Zent::Discovery::Server
