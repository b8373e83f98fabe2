#pragma once

#include "ExitStatus.h"

namespace Zent::Discovery::Console
{
class Output;
class ServerSession;

/// One of the program's commands, ready to run.
class ICommand
{
public:
    virtual ~ICommand() = default;

    /// @throws CallFailure when the library refuses.
    virtual ExitStatus Run(ServerSession& session, Output& output) = 0;
};
} // namespace Zent::Discovery::Console
