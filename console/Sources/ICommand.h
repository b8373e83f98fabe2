#pragma once

#include "DiscoverySession.h"
#include "ExitStatus.h"

namespace Zent::Discovery::Console
{
class MessageQueue;
class Output;

/// One of the program's commands, ready to run.
class ICommand
{
public:
    virtual ~ICommand() = default;

    /// messages is where the session's messages come.
    /// @throws DiscoveryError when the library refuses.
    virtual ExitStatus Run(DiscoverySession& session, MessageQueue& messages, Output& output) = 0;
};
} // namespace Zent::Discovery::Console
