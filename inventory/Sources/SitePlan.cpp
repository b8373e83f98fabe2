#include "Inventory/SitePlan.h"

#include "AsciiCase.h"
#include "Inventory/Network.h"
#include "PlanOrder.h"

#include <algorithm>
#include <bit>
#include <deque>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace Zent::Discovery::Inventory
{
namespace
{
using Code = ChangeRefusal::RefusalCode;

constexpr unsigned MaximumTries = 4096; // to find a free address; a network may have millions

/// Names of computers are compared so.
std::string Lower(std::string text)
{
    std::ranges::transform(text, text.begin(), &AsciiCase::Lower);
    return text;
}

/// What is known of the site and its devices.
class Planner final
{
public:
    Planner(const SiteFile& site,
            std::span<const Device* const> devices,
            const SitePlan::Options& options,
            SitePlan& plan)
        : site(site)
        , devices(devices)
        , options(options)
        , plan(plan)
    {
        for (const Device* const device : devices)
        {
            for (const Device::Interface& interface : device->Interfaces())
            {
                owners.try_emplace(interface.MACAddress, device);
            }
        }
    }

    void PlanNames()
    {
        PlanOrder order(Code::NameTaken, [this](const PlanOrder::Move& move, const PlanOrder::IsFree& isFree) {
            return SpareName(move, isFree);
        });
        for (const Device* const device : devices)
        {
            order.AddHolder(Lower(device->HostName), IdOf(*device));
        }
        std::unordered_map<const Device*, const SiteEntry*> named;
        for (const SiteEntry& entry : site.Entries())
        {
            const auto owner = owners.find(entry.MACAddress);
            if (!entry.HostName || owner == owners.end())
            {
                continue;
            }
            const Device& device = *owner->second;
            wantedNames.insert(Lower(*entry.HostName));
            const ChangeRequest request = ChangeRequest::Rename(entry.MACAddress, *entry.HostName);
            if (const auto [first, isNew] = named.try_emplace(&device, &entry); !isNew)
            {
                if (first->second->HostName != entry.HostName)
                {
                    Refuse(entry, request,
                           {Code::BadName, "the same device has another name at " + first->second->Place});
                }
            }
            else if (device.HostName != *entry.HostName)
            {
                if (device.IsHostNameReadOnly)
                {
                    Refuse(entry, request, {Code::NameReadOnly, device.HostName + " does not let its name be changed"});
                }
                else
                {
                    Add(order, entry, {request, IdOf(device), Lower(device.HostName), Lower(*entry.HostName)});
                }
            }
        }
        order.Plan(plan);
    }

    void PlanAddresses()
    {
        PlanOrder order(Code::AddressTaken, [this](const PlanOrder::Move& move, const PlanOrder::IsFree& isFree) {
            return SpareAddress(move, isFree);
        });
        for (const auto& [mac, owner] : owners)
        {
            order.AddHolder(owner->FindMAC(mac)->IPAddress, mac);
            reserved.insert(owner->FindMAC(mac)->DefaultGateway);
        }
        reserved.insert(options.Reserved.begin(), options.Reserved.end());
        for (const SiteEntry& entry : site.Entries())
        {
            reserved.insert(entry.IPAddress.value_or(""));
            reserved.insert(entry.DefaultGateway.value_or(""));
            const auto owner = owners.find(entry.MACAddress);
            const bool isAboutAddresses = entry.IPAddress || entry.SubNetMask || entry.DefaultGateway;
            if (isAboutAddresses && owner != owners.end())
            {
                PlanAddress(order, entry, *owner->second);
            }
        }
        order.Plan(plan);
    }

private:
    static const std::string& IdOf(const Device& device) { return device.MainInterface().MACAddress; }

    void PlanAddress(PlanOrder& order, const SiteEntry& entry, const Device& device)
    {
        const Device::Interface& now = *device.FindMAC(entry.MACAddress);
        ChangeRequest request = ChangeRequest::Configure(now); // what the file does not tell stays
        request.Interface.IPAddress = entry.IPAddress.value_or(now.IPAddress);
        request.Interface.SubNetMask = entry.SubNetMask.value_or(now.SubNetMask);
        request.Interface.DefaultGateway = entry.DefaultGateway.value_or(now.DefaultGateway);
        try
        {
            request = request.Normal();
        }
        catch (const std::invalid_argument& error) // it has none, and the file does not tell one
        {
            Refuse(entry, request, {Code::BadAddress, error.what()});
            return;
        }
        if (!request.IsShownBy(device))
        {
            Add(order, entry, {request, entry.MACAddress, now.IPAddress, request.Interface.IPAddress});
        }
    }

    void Refuse(const SiteEntry& entry, const ChangeRequest& request, ChangeRefusal refusal)
    {
        refusal.Text = entry.Place + ": " + refusal.Text;
        plan.Obstacles.push_back({request, std::move(refusal)});
    }

    void Add(PlanOrder& order, const SiteEntry& entry, PlanOrder::Move move)
    {
        if (const std::optional<ChangeRefusal> refusal = ChangeChecks::FindInValues(move.Request, {}))
        {
            Refuse(entry, move.Request, *refusal);
            return;
        }
        move.Place = entry.Place;
        order.Add(std::move(move));
    }

    std::optional<PlanOrder::Temporary> SpareName(const PlanOrder::Move& move, const PlanOrder::IsFree& isFree) const
    {
        std::string digits = move.Request.Interface.MACAddress;
        std::erase(digits, ':');
        const std::string name = "swap-" + digits.substr(digits.size() - std::min<std::size_t>(digits.size(), 6));
        for (unsigned count = 1;; ++count)
        {
            const std::string unique = name + (count == 1 ? "" : "-" + std::to_string(count));
            if (isFree(Lower(unique)) && !wantedNames.contains(Lower(unique)))
            {
                return PlanOrder::Temporary{ChangeRequest::Rename(move.Request.Interface.MACAddress, unique),
                                            Lower(unique)};
            }
        }
    }

    std::optional<PlanOrder::Temporary> SpareAddress(const PlanOrder::Move& move, const PlanOrder::IsFree& isFree) const
    {
        ChangeRequest request = move.Request;
        const auto use = [&](const std::string& address) {
            request.Interface.IPAddress = address;
            return isFree(address) && !reserved.contains(address) && !ChangeChecks::FindInValues(request, {})
                       ? std::optional(PlanOrder::Temporary{request, address})
                       : std::nullopt;
        };
        if (options.SpareAddress)
        {
            return use(*options.SpareAddress);
        }
        const IPv4 mask = *Network::ParseAddress(request.Interface.SubNetMask);
        const Network network{*Network::ParseAddress(request.Interface.IPAddress), std::popcount(mask)};
        for (IPv4 address = network.Highest(), tries = 0; address > network.Lowest() && tries < MaximumTries;
             --address, ++tries)
        {
            if (std::optional<PlanOrder::Temporary> temporary = use(Network::TextOf(address)))
            {
                return temporary;
            }
        }
        return std::nullopt;
    }

    const SiteFile& site;
    const std::span<const Device* const> devices;
    const SitePlan::Options& options;
    SitePlan& plan;
    std::unordered_map<std::string, const Device*> owners; // of interfaces, by their MAC addresses
    std::unordered_set<std::string> wantedNames;
    std::unordered_set<std::string> reserved; // addresses
};

/// Moves the first steps up to the last one for that interface, so that one device after another is done.
void MoveThrough(std::deque<SitePlan::Step>& from, const std::string& macAddress, std::vector<SitePlan::Step>& to)
{
    const auto isFor = [&macAddress](const SitePlan::Step& step) {
        return step.Request.Interface.MACAddress == macAddress;
    };
    while (std::ranges::any_of(from, isFor))
    {
        to.push_back(std::move(from.front()));
        from.pop_front();
    }
}
} // namespace

SitePlan SitePlan::For(const SiteFile& site, std::span<const Device* const> devices, const Options& options)
{
    SitePlan plan;
    Planner planner(site, devices, options, plan);
    planner.PlanNames();
    std::deque<Step> names(plan.Steps.begin(), plan.Steps.end());
    if (options.What == Scope::All)
    {
        planner.PlanAddresses();
    }
    std::deque<Step> addresses(plan.Steps.begin() + static_cast<std::ptrdiff_t>(names.size()), plan.Steps.end());
    plan.Steps.clear();
    for (const SiteEntry& entry : site.Entries())
    {
        MoveThrough(names, entry.MACAddress, plan.Steps);
        MoveThrough(addresses, entry.MACAddress, plan.Steps);
    }
    return plan;
}
} // namespace Zent::Discovery::Inventory
