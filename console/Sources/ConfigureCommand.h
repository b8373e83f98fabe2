#pragma once

#include "Device.h"
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

    /// @throws std::runtime_error when the file cannot be read.
    ExitStatus Run(ServerSession& session, Output& output) override;

private:
    using Interfaces = std::vector<Device::Interface>;

    std::string ReadFile() const;
    static Interfaces Read(const std::string& configurations);

    const std::chrono::milliseconds wait;
    const std::string file;
};
} // namespace Zent::Discovery::Console
