#pragma once

#include "Commands/ICommand.h"
#include "Inventory/Device.h"

#include <functional>
#include <string>

namespace Zent::Discovery::Console
{
/// Sends a request to one device and waits for the signature that shows its success.
class RequestCommand : public ICommand
{
protected:
    using Condition = std::function<bool(const Inventory::Device& device)>;

    static Condition OwnsMAC(const std::string& macAddress);
    static Condition OwnsIP(const std::string& ipAddress);

    /// Waits for a signature that isFromDevice and isDone accept, and shows it. failure is the complaint about a device
    /// that answers but is not done.
    static ExitStatus Await(CommandContext& context,
                            const Condition& isFromDevice,
                            const Condition& isDone,
                            const std::string& failure);
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

/// Gives a device a new host name.
class RenameCommand final : public RequestCommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;
    ExitStatus Run(CommandContext& context) override;

private:
    std::string newHostName;
    std::string macAddress; // empty when ipAddress is set
    std::string ipAddress;
};
} // namespace Zent::Discovery::Console
