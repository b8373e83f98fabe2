#pragma once

#include "Server/ServerActionType.h"
#include "system/Object.h"

namespace Zent::Discovery::Server
{
/// One unit of work for the task processor. Constant after construction; shared between threads.
class ServerAction : public Nfx::System::Object
{
public:
    const ServerActionType& Type() const noexcept { return type; }

protected:
    explicit ServerAction(const ServerActionType& type) noexcept
        : type(type)
    {
    }

private:
    const ServerActionType type;
};
} // namespace Zent::Discovery::Server
