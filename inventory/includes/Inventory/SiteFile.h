#pragma once

#include "Inventory/Device.h"
#include "Inventory/DeviceDifferences.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// What a network interface and its device are to have. What is nothing may be anything.
struct SiteEntry
{
    std::string MACAddress;                   // in the library's form, as all addresses
    std::optional<std::string> HostName = {}; // of the device
    std::optional<std::string> IPAddress = {};
    std::optional<std::string> SubNetMask = {};
    std::optional<std::string> DefaultGateway = {}; // empty for none
    std::string Place = {};                         // for messages: site.json: line 3, column 5

    /// A device that has what is wanted; nobody has heard of it.
    Device ToDevice() const;
};

/// How devices are otherwise than a site file wants them.
struct SiteDeviation
{
    enum class DeviationKind
    {
        Missing,  // an interface of the file that no device has
        Foreign,  // a device none of whose interfaces is in the file
        Deviating // an interface whose device has something else than the file says
    };

    using Differences = std::vector<DeviceDifferences::Difference>;

    DeviationKind Kind;
    const SiteEntry* Wanted;     // null when foreign
    const Device* Found;         // null when missing
    Differences Properties = {}; // of Deviating: Before is what there is, After is what is wanted

    /// missing, foreign or deviating.
    const char* KindName() const;

    /// Of the interface in question, as far as they are known.
    std::string HostName() const;
    std::string MACAddress() const;
    std::string IPAddress() const;

    /// For people: press-9 (00:1A:2B:3C:4D:5E, 10.0.0.4) is deviating: HostName press-9, not press-4.
    std::string ToString() const;

    /// {"Deviation":"deviating","HostName":"..","MACAddress":"..","IPAddress":"..","Differences":[{"Property":
    /// "HostName","Before":"..","After":".."}]}: the first three tell what there is, and of a missing one what is
    /// wanted; only a deviating one has differences.
    std::string ToJson() const;
};

/// What the devices of a site are called and which addresses they have. In the file that is an array of objects, one
/// for each interface:
///
///     [
///       {"MACAddress": "00:1A:2B:3C:4D:5E", "HostName": "press-4", "IPAddress": "10.0.0.4",
///        "SubNetMask": "255.255.255.0", "DefaultGateway": "10.0.0.1"}
///     ]
///
/// All but the MAC address may be left out.
class SiteFile final
{
public:
    /// Reads a file. name stands for it in messages.
    /// @throws std::invalid_argument that names file, line, column and reason.
    static SiteFile Parse(std::string_view text, const std::string& name);

    /// What these devices have now, in the order of their names.
    static SiteFile Of(std::span<const Device* const> devices);

    /// The file, an interface in each line.
    std::string ToJson() const;

    const std::vector<SiteEntry>& Entries() const { return entries; }

    /// What is otherwise with these devices: what is missing, deviating in the order of the file, and foreign. Valid as
    /// long as the file and the devices.
    std::vector<SiteDeviation> Compare(std::span<const Device* const> devices) const;

private:
    std::vector<SiteEntry> entries; // each MAC address once
};
} // namespace Zent::Discovery::Inventory
