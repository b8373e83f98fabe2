#include "Inventory/Conflicts.h"

#include "Inventory/EventQueue.h"

#include <iterator>
#include <utility>

namespace Zent::Discovery::Inventory
{
namespace
{
/// What stays the same as long as it is the same device, and in the same form however the device lists it.
std::string IdentityOf(const Device& device)
{
    std::set<std::string> interfaces;
    for (const Device::Interface& interface : device.Interfaces())
    {
        interfaces.insert(interface.MACAddress);
    }
    std::string identity = device.SerialNumber;
    for (const std::string& address : interfaces)
    {
        identity += '\n' + address;
    }
    return identity;
}

bool IsAddressOfOne(const std::string& address)
{
    return !address.empty() && address != "0.0.0.0" && !address.starts_with("127.");
}

/// The addresses that a device shares with no other, each once.
std::set<std::string> AddressesOf(const Device& device)
{
    std::set<std::string> addresses;
    for (const Device::Interface& interface : device.Interfaces())
    {
        if (IsAddressOfOne(interface.IPAddress))
        {
            addresses.insert(interface.IPAddress);
        }
    }
    return addresses;
}
} // namespace

Conflicts::Conflicts(const std::vector<std::string>& accepted, EventQueue& events)
    : accepted(accepted.begin(), accepted.end())
    , events(events)
{
}

void Conflicts::Heard(std::uint64_t id, const std::shared_ptr<const Device>& device, Time now)
{
    Known& known = devices[id];
    if (known.Latest == nullptr)
    {
        known.Identity = IdentityOf(*device);
        Enter(id, *device, now);
    }
    else if (known.Latest->Message.Document != device->Message.Document)
    {
        CheckIdentity(known, device, now);
        if (known.Latest->HostName != device->HostName || AddressesOf(*known.Latest) != AddressesOf(*device))
        {
            Withdraw(id, *known.Latest);
            Enter(id, *device, now);
        }
    }
    known.Latest = device;
    known.Heard = now;
    for (const std::string& address : AddressesOf(*device))
    {
        CheckAddress(address, addresses[address], known, now);
    }
}

/// A device that changes is another one from then on; two that share an address are heard in turn.
void Conflicts::CheckIdentity(Known& known, const std::shared_ptr<const Device>& device, Time now)
{
    std::string identity = IdentityOf(*device);
    if (identity == known.Identity)
    {
        return;
    }
    if (identity == known.IdentityBefore && known.HeardBefore + Together >= now)
    {
        if (std::exchange(known.Contradicted, now) + Together < now)
        {
            Tell({Conflict::ConflictKind::MAC, device->MainInterface().MACAddress, 2, known.Latest, device}, now);
        }
    }
    known.IdentityBefore = std::exchange(known.Identity, std::move(identity));
    known.HeardBefore = known.Heard;
}

void Conflicts::CheckAddress(const std::string& address, Use& use, const Known& known, Time now)
{
    if (use.IsTold || use.Holders.size() < 2)
    {
        return;
    }
    std::shared_ptr<const Device> other;
    std::size_t count = 1;
    for (const std::uint64_t id : use.Holders)
    {
        const Known& holder = devices.at(id);
        if (&holder != &known && holder.Heard + Together >= now)
        {
            other = holder.Latest;
            ++count;
        }
    }
    if (other != nullptr)
    {
        use.IsTold = true;
        Tell({Conflict::ConflictKind::IP, address, count, other, known.Latest}, now);
    }
}

void Conflicts::Advance(Time now)
{
    std::erase_if(newNames, [this, now](const std::string& name) {
        const auto found = names.find(name);
        if (found == names.end() || found->second.Holders.size() < 2)
        {
            return true;
        }
        Use& use = found->second;
        if (use.Changed + NamesSettle > now)
        {
            return false;
        }
        use.IsTold = true;
        const auto first = use.Holders.begin();
        Tell({Conflict::ConflictKind::Name, name, use.Holders.size(), devices.at(*first).Latest,
              devices.at(*std::next(first)).Latest},
             now);
        return true;
    });
}

void Conflicts::Remove(std::uint64_t id)
{
    const auto found = devices.find(id);
    if (found != devices.end())
    {
        Withdraw(id, *found->second.Latest);
        devices.erase(found);
    }
}

void Conflicts::Tell(Conflict conflict, Time now)
{
    if (!accepted.contains(conflict.ToString()))
    {
        const std::shared_ptr<const Device> subject = conflict.Second;
        events.Raise({.Kind = Event::EventKind::Conflict,
                      .When = now,
                      .Subject = subject,
                      .Contradiction = std::move(conflict)});
    }
}

void Conflicts::Enter(std::uint64_t id, const Device& device, Time now)
{
    for (const std::string& address : AddressesOf(device))
    {
        addresses[address].Holders.insert(id);
    }
    if (device.HostName.empty())
    {
        return;
    }
    Use& name = names[device.HostName];
    name.Holders.insert(id);
    name.Changed = now;
    if (name.Holders.size() > 1 && !name.IsTold)
    {
        newNames.insert(device.HostName);
    }
}

void Conflicts::Withdraw(std::uint64_t id, const Device& device)
{
    for (const std::string& address : AddressesOf(device))
    {
        WithdrawFrom(addresses, address, id);
    }
    WithdrawFrom(names, device.HostName, id);
}

void Conflicts::WithdrawFrom(Uses& uses, const std::string& value, std::uint64_t id)
{
    const auto found = uses.find(value);
    if (found == uses.end())
    {
        return;
    }
    found->second.Holders.erase(id);
    found->second.IsTold = found->second.IsTold && found->second.Holders.size() > 1;
    if (found->second.Holders.empty())
    {
        uses.erase(found);
    }
}
} // namespace Zent::Discovery::Inventory
