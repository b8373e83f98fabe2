#pragma once

#include "ICommand.h"

#include <chrono>
#include <optional>
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
    ExitStatus Run(ServerSession& session, Output& output) override;

private:
    /// What an interface is to become; what is not given may stay as it is.
    struct Settings
    {
        std::string MACAddress;
        std::string IPAddress;
        std::optional<std::string> SubNetMask;
        std::optional<std::string> DefaultGateway;
        std::optional<std::string> MTU;
    };

    using AllSettings = std::vector<Settings>;

    AllSettings Read(const std::string& configurations) const;

    const std::chrono::milliseconds wait;
    const std::string file;
};
} // namespace Zent::Discovery::Console
