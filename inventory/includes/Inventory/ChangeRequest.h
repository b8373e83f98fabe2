#pragma once

#include "Inventory/Device.h"
#include "Inventory/SearchOptions.h"
#include "Inventory/Time.h"

#include <optional>
#include <string>
#include <string_view>

namespace Zent::Discovery::Inventory
{
class DeviceTable;
struct DeviceRow;

/// What is to be changed: the host name of a device, or the settings of one of its interfaces.
struct ChangeRequest
{
    enum class ChangeKind
    {
        Rename,   // the device with the interface's MAC address takes the name
        RenameAt, // the device at the interface's IP address takes it; broadcasts need not reach that one
        Configure // the interface with the MAC address takes the other members
    };

    static ChangeRequest Rename(std::string macAddress, std::string hostName);
    static ChangeRequest RenameAt(std::string ipAddress, std::string hostName);

    /// An empty friendly name stays what it is; no gateway is empty or 0.0.0.0; an empty MTU is "Unknown", with which
    /// the device keeps its own or takes its usual one.
    static ChangeRequest Configure(Device::Interface settings);

    /// Reads {"MACAddress":"..","HostName":".."}, {"IPAddress":"..","HostName":".."} or {"MACAddress":"..",
    /// "IPAddress":"..","SubNetMask":"..","DefaultGateway":"..","MTU":"..","FriendlyName":".."}, of which the last two
    /// may be missing. Gives its normal form.
    /// @throws std::invalid_argument that names what is wrong with it.
    static ChangeRequest Parse(std::string_view json);

    /// The same request with addresses in the form of the library's documents.
    /// @throws std::invalid_argument that names the text which is no address.
    ChangeRequest Normal() const;

    // For a request in that form.

    /// The device that is to change; null when the table does not know it.
    const DeviceRow* TargetIn(const DeviceTable& devices) const;
    bool IsAbout(const Device& device) const;

    /// Whether the device has taken it.
    bool IsShownBy(const Device& device) const;

    /// Whether the device says that it takes such a change when it starts anew.
    bool NeedsReboot(const Device& device) const;

    /// What the device has of that which would change: {"HostName":".."} or {"FriendlyName":"..","IPAddress":"..",
    /// "SubNetMask":"..","DefaultGateway":"..","MTU":".."}.
    std::string SettingsOf(const Device& device) const;

    /// What the request asks for, in the same form.
    std::string Settings() const;

    /// As Parse reads it.
    std::string ToJson() const;

    /// For people: the name "press-4", the address 10.0.0.7/24 with the gateway 10.0.0.1.
    std::string ToString() const;

    /// The JSON array that tells a device to take its settings.
    std::string ToNicConfigs() const;

    ChangeKind Kind;
    std::string HostName = {};
    Device::Interface Interface;
};

/// How to change.
struct ChangeOptions
{
    /// Searches first, unless a search runs, so that names and addresses that other devices have are known; waits for
    /// its end, but no longer than its Wait. Without it only devices that are known already count.
    std::optional<SearchOptions> Look = SearchOptions{.Wait = Time{3000}};

    /// From the request to the verdict about a device that says nothing of a reboot. A device that was not heard for a
    /// while is given the same time to answer before it is sent anything.
    Time Timeout{3000};

    /// From the request to the verdict about a device that takes it when it starts anew. Without it that is a minute
    /// for one that falls silent, and Timeout for one that goes on as before.
    std::optional<Time> RebootTimeout = {};

    /// Goes on though the device is unknown or another one has the name or the address.
    bool Force = false;

    /// The request gives back what the device had before, which is right whatever it is. It is sent once more to a
    /// device that was silent and then shows it not, and has not come true while the device has said nothing since.
    bool GivesBack = false;
};
} // namespace Zent::Discovery::Inventory
