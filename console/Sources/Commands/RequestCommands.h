#pragma once

#include "Commands/ICommand.h"
#include "Inventory/Device.h"

#include <functional>
#include <string>

namespace Zent::Discovery::Console
{
/// Asks one device and waits for its signature.
class RequestCommand : public ICommand
{
protected:
    using Condition = std::function<bool(const Inventory::Device& device)>;

    static Condition OwnsMAC(const std::string& macAddress);
    static Condition OwnsIP(const std::string& ipAddress);

    /// Waits for a signature that isFromDevice accepts, and shows it.
    static ExitStatus Await(CommandContext& context, const Condition& isFromDevice);
};

/// Asks the device that owns a MAC address for its signature.
class RefreshCommand final : public RequestCommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;
    ExitStatus Run(CommandContext& context) override;

private:
    std::string macAddress;
};

/// Asks the device at an IP address for its signature.
class ReachCommand final : public RequestCommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;
    ExitStatus Run(CommandContext& context) override;

private:
    std::string ipAddress;
};
} // namespace Zent::Discovery::Console
