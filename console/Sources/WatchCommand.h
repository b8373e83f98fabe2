#pragma once

#include "ICommand.h"

#include <chrono>
#include <optional>

namespace Zent::Discovery::Console
{
/// Shows messages as they come.
class WatchCommand final : public ICommand
{
public:
    /// Watches until the user interrupts when no time is given.
    explicit WatchCommand(std::optional<std::chrono::milliseconds> time);

    ExitStatus Run(ServerSession& session, Output& output) override;

private:
    const std::optional<std::chrono::milliseconds> time;
};
} // namespace Zent::Discovery::Console
