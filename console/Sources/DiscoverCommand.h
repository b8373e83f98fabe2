#pragma once

#include "ICommand.h"

#include <chrono>
#include <cstddef>

namespace Zent::Discovery::Console
{
/// Asks all devices for their signatures and shows who was heard of.
class DiscoverCommand final : public ICommand
{
public:
    /// expectedDevices ends the wait early; 0 when their number is unknown.
    DiscoverCommand(std::chrono::milliseconds wait, std::size_t expectedDevices);

    ExitStatus Run(ServerSession& session, Output& output) override;

private:
    const std::chrono::milliseconds wait;
    const std::size_t expectedDevices;
};
} // namespace Zent::Discovery::Console
