#pragma once

#include "ICommand.h"
#include "Inventory/Device.h"

#include <chrono>
#include <functional>
#include <string>

namespace Zent::Discovery::Console
{
/// Sends a request to one device and waits for the signature that shows its success.
class RequestCommand final : public ICommand
{
public:
    using Request = std::function<void(DiscoverySession& session)>;
    using Condition = std::function<bool(const Inventory::Device& device)>;

    /// Waits for a signature that isFromDevice and isDone accept. failure is the complaint about a device that answers
    /// but is not done.
    RequestCommand(
        std::chrono::milliseconds wait, Request send, Condition isFromDevice, Condition isDone, std::string failure);

    static RequestCommand Refresh(std::chrono::milliseconds wait, const std::string& macAddress);
    static RequestCommand Reach(std::chrono::milliseconds wait, const std::string& ipAddress);

    static RequestCommand RenameMAC(std::chrono::milliseconds wait,
                                    const std::string& newHostName,
                                    const std::string& macAddress);

    static RequestCommand RenameIP(std::chrono::milliseconds wait,
                                   const std::string& newHostName,
                                   const std::string& ipAddress);

    ExitStatus Run(DiscoverySession& session, MessageQueue& messages, Output& output) override;

private:
    const std::chrono::milliseconds wait;
    const Request send;
    const Condition isFromDevice;
    const Condition isDone;
    const std::string failure;
};
} // namespace Zent::Discovery::Console
