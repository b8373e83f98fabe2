#pragma once

#include "ICommand.h"

#include <chrono>
#include <cstddef>
#include <string>

namespace Zent::Discovery::Console
{
/// Asks all devices for their signatures and shows who was heard of.
class DiscoverCommand final : public ICommand
{
public:
    /// expectedDevices ends the wait early; 0 when their number is unknown. logFile is where to look when none answers.
    DiscoverCommand(std::chrono::milliseconds wait, std::size_t expectedDevices, std::string logFile);

    ExitStatus Run(ServerSession& session, Output& output) override;

private:
    const std::chrono::milliseconds wait;
    const std::size_t expectedDevices;
    const std::string logFile;
};
} // namespace Zent::Discovery::Console
