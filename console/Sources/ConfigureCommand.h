#pragma once

#include "ICommand.h"

#include <chrono>
#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// Gives network interfaces of devices new settings and waits until the devices show them.
class ConfigureCommand final : public ICommand
{
public:
    /// file is the UTF-8 path of a JSON array of interfaces.
    ConfigureCommand(std::chrono::milliseconds wait, std::string file);

    /// @throws std::runtime_error when the file cannot be read or holds something else.
    ExitStatus Run(DiscoverySession& session, MessageQueue& messages, Output& output) override;

private:
    std::vector<NICSettings> Read() const;

    const std::chrono::milliseconds wait;
    const std::string file;
};
} // namespace Zent::Discovery::Console
