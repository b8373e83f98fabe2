#pragma once

#include "Inventory/DeviceMessage.h"

#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// What one message told about a device. All texts are as the device sent them, unfit for a terminal.
class Device
{
public:
    struct Interface
    {
        std::string MACAddress;
        std::string IPAddress;
        std::string SubNetMask = {};
        std::string DefaultGateway = {};
        std::string MTU = {};
        std::string FriendlyName = {};

        /// False for a loopback interface, for instance, whose address is nothing but zeros.
        bool HasMACAddress() const;
    };

    struct Product
    {
        std::string Name;
        std::string Version;
    };

    /// @throws std::invalid_argument with the reason when the document is not one of the library's; std::bad_alloc.
    explicit Device(DeviceMessage message);

    /// The interface that the message came from, or else the first one; without text when there is none.
    const Interface& MainInterface() const;

    /// The interface that the message came from, and all that the device has; the first one may be there twice.
    const std::vector<Interface>& Interfaces() const;

    /// The interface with that MAC address in the library's form; null when the device has none such.
    const Interface* FindMAC(std::string_view address) const;

    /// True when one of its interfaces has the address, which is in the library's form.
    bool HasIP(std::string_view address) const;

    /// True when both texts are about the same device.
    bool IsSameAs(const Device& other) const;

    DeviceMessage Message;
    std::string HostName;
    std::string Type;
    std::string Family;
    std::string SerialNumber;
    std::vector<Product> Products;
    bool IsHostNameReadOnly = true; // what a device is that does not say otherwise
    bool RebootRequiredForHostNameChange = false;
    bool RebootRequiredForIPConfigChange = false;

private:
    void Read();

    std::vector<Interface> interfaces; // the one that the message came from first
};
} // namespace Zent::Discovery::Inventory
