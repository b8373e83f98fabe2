#include "Inventory/SiteFile.h"

#include "Inventory/NaturalOrder.h"
#include "JsonText.h"
#include "SiteReader.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace Zent::Discovery::Inventory
{
namespace
{
using Kind = SiteDeviation::DeviationKind;

/// No gateway is written in two ways.
std::string GatewayOf(const Device::Interface& interface)
{
    return interface.DefaultGateway == "0.0.0.0" ? "" : interface.DefaultGateway;
}

/// The interface of each device by its MAC address.
struct Place
{
    const Device* Owner;
    const Device::Interface* Interface;
};

std::unordered_map<std::string, Place> PlacesOf(std::span<const Device* const> devices)
{
    std::unordered_map<std::string, Place> places;
    for (const Device* const device : devices)
    {
        for (const Device::Interface& interface : device->Interfaces())
        {
            places.try_emplace(interface.MACAddress, Place{device, &interface});
        }
    }
    return places;
}

std::string Shown(const std::string& value)
{
    return value.empty() ? "\"\"" : value;
}

SiteDeviation::Differences DifferencesOf(const SiteEntry& wanted, const Place& found)
{
    SiteDeviation::Differences differences;
    const auto compare = [&differences](const char* property, const std::string& before,
                                        const std::optional<std::string>& after) {
        if (after && *after != before)
        {
            differences.push_back({property, before, after});
        }
    };
    compare("HostName", found.Owner->HostName, wanted.HostName);
    compare("IPAddress", found.Interface->IPAddress, wanted.IPAddress);
    compare("SubNetMask", found.Interface->SubNetMask, wanted.SubNetMask);
    compare("DefaultGateway", GatewayOf(*found.Interface), wanted.DefaultGateway);
    return differences;
}
} // namespace

Device SiteEntry::ToDevice() const
{
    const auto interface = [this](const std::string& macAddress) {
        return JsonText().Text("MACAddress", macAddress).Text("IPAddress", IPAddress.value_or("")).Take();
    };
    JsonText host;
    host.Text("HostName", HostName.value_or("")).Array("NICs", std::array{MACAddress}, interface);
    return Device({DeviceMessage::MessageKind::Signature, JsonText().Raw("Host", host.Take()).Take()});
}

const char* SiteDeviation::KindName() const
{
    static constexpr std::array Names = {"missing", "foreign", "deviating"};
    return Names[static_cast<std::size_t>(Kind)];
}

std::string SiteDeviation::HostName() const
{
    return Found != nullptr ? Found->HostName : Wanted->HostName.value_or("");
}

std::string SiteDeviation::MACAddress() const
{
    return Wanted != nullptr ? Wanted->MACAddress : Found->MainInterface().MACAddress;
}

std::string SiteDeviation::IPAddress() const
{
    const Device::Interface* const interface = Found == nullptr ? nullptr : Found->FindMAC(MACAddress());
    return interface != nullptr ? interface->IPAddress : Wanted != nullptr ? Wanted->IPAddress.value_or("") : "";
}

std::string SiteDeviation::ToString() const
{
    const std::string address = IPAddress();
    std::string text = HostName();
    text += (text.empty() ? "(" : " (") + MACAddress() + (address.empty() ? "" : ", " + address) + ") is " + KindName();
    const char* separator = ": ";
    for (const DeviceDifferences::Difference& each : Properties)
    {
        text +=
            std::exchange(separator, ", ") + each.Property + " " + Shown(*each.Before) + ", not " + Shown(*each.After);
    }
    return text;
}

std::string SiteDeviation::ToJson() const
{
    JsonText json;
    json.Text("Deviation", KindName())
        .Text("HostName", HostName())
        .Text("MACAddress", MACAddress())
        .Text("IPAddress", IPAddress());
    if (Kind == DeviationKind::Deviating)
    {
        json.Array("Differences", Properties, [](const auto& each) { return each.ToJson(); });
    }
    return json.Take();
}

SiteFile SiteFile::Parse(std::string_view text, const std::string& name)
{
    SiteFile file;
    file.entries = SiteReader::Read(text, name);
    return file;
}

SiteFile SiteFile::Of(std::span<const Device* const> devices)
{
    std::vector<const Device*> ordered(devices.begin(), devices.end());
    std::ranges::stable_sort(ordered, &NaturalOrder::IsBefore, &Device::HostName);
    SiteFile file;
    std::unordered_set<std::string> known;
    for (const Device* const device : ordered)
    {
        bool isFirst = true;
        for (const Device::Interface& interface : device->Interfaces())
        {
            if (!known.insert(interface.MACAddress).second)
            {
                continue;
            }
            // The name stands with one interface, so that it has to be changed in one place.
            file.entries.push_back(
                {.MACAddress = interface.MACAddress,
                 .HostName = std::exchange(isFirst, false) ? std::optional(device->HostName) : std::nullopt,
                 .IPAddress = interface.IPAddress,
                 .SubNetMask = interface.SubNetMask,
                 .DefaultGateway = GatewayOf(interface)});
        }
    }
    return file;
}

std::string SiteFile::ToJson() const
{
    std::string text = "[";
    for (const SiteEntry& entry : entries)
    {
        text += (text.size() == 1 ? "\n  {" : ",\n  {") + ("\"MACAddress\": " + JsonText::Quoted(entry.MACAddress));
        const auto add = [&text](const char* key, const std::optional<std::string>& value) {
            text += value ? std::string(", \"") + key + "\": " + JsonText::Quoted(*value) : "";
        };
        add("HostName", entry.HostName);
        add("IPAddress", entry.IPAddress);
        add("SubNetMask", entry.SubNetMask);
        add("DefaultGateway", entry.DefaultGateway);
        text += '}';
    }
    return text + "\n]\n";
}

std::vector<SiteDeviation> SiteFile::Compare(std::span<const Device* const> devices) const
{
    const std::unordered_map<std::string, Place> places = PlacesOf(devices);
    std::vector<SiteDeviation> missing;
    std::vector<SiteDeviation> deviating;
    std::unordered_set<const Device*> known;
    for (const SiteEntry& entry : entries)
    {
        const auto found = places.find(entry.MACAddress);
        if (found == places.end())
        {
            missing.push_back({Kind::Missing, &entry, nullptr});
            continue;
        }
        known.insert(found->second.Owner);
        if (SiteDeviation::Differences differences = DifferencesOf(entry, found->second); !differences.empty())
        {
            deviating.push_back({Kind::Deviating, &entry, found->second.Owner, std::move(differences)});
        }
    }
    std::vector<SiteDeviation> all = std::move(missing);
    std::ranges::move(deviating, std::back_inserter(all));
    for (const Device* const device : devices)
    {
        if (!known.contains(device))
        {
            all.push_back({Kind::Foreign, nullptr, device});
        }
    }
    return all;
}
} // namespace Zent::Discovery::Inventory
