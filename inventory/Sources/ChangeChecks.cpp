#include "Inventory/ChangeChecks.h"

#include "AsciiCase.h"
#include "Inventory/DeviceTable.h"
#include "Inventory/Network.h"
#include "JsonText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <bit>
#include <tuple>
#include <utility>

namespace Zent::Discovery::Inventory
{
namespace
{
using Code = ChangeRefusal::RefusalCode;
using Refusal = std::optional<ChangeRefusal>;

bool IsUtf8(const std::string& text)
{
    try
    {
        std::ignore = nlohmann::json(text).dump();
        return true;
    }
    catch (const nlohmann::json::type_error&)
    {
        return false;
    }
}

/// In UTF-8, whose control characters from U+0080 on have two bytes.
bool HasControl(const std::string& text)
{
    unsigned char last = 0;
    return std::ranges::any_of(text, [&last](unsigned char code) {
        const bool isSecond = std::exchange(last, code) == 0xC2;
        return code < 0x20 || code == 0x7F || (isSecond && code < 0xA0);
    });
}

/// As names of computers are compared.
bool IsSameName(const std::string& left, const std::string& right)
{
    return std::ranges::equal(left, right, {}, &AsciiCase::Lower, &AsciiCase::Lower);
}

Refusal CheckName(const std::string& name)
{
    if (!IsUtf8(name))
    {
        return ChangeRefusal{Code::BadName, "the name is not UTF-8"};
    }
    if (HasControl(name))
    {
        return ChangeRefusal{Code::BadName, "the name has a control character in it"};
    }
    if (name.find_first_not_of(' ') == std::string::npos)
    {
        return ChangeRefusal{Code::BadName, name.empty() ? "the name is empty" : "the name has nothing but blanks"};
    }
    if (name.size() > ChangeChecks::MaximumName)
    {
        return ChangeRefusal{Code::BadName, "the name has " + std::to_string(name.size()) + " bytes, more than " +
                                                std::to_string(ChangeChecks::MaximumName)};
    }
    return std::nullopt;
}

/// Why an address is none of a host in its network; empty when it is one.
std::string WrongWith(const Network& network)
{
    const IPv4 address = network.Address;
    const IPv4 first = address >> 24;
    if (first == 0)
    {
        return "is no address of a device";
    }
    if (first == 127)
    {
        return "is a loopback address";
    }
    if (first >= 224)
    {
        return address == 0xFFFFFFFF ? "is the broadcast address"
               : first < 240         ? "is a multicast address"
                                     : "is reserved";
    }
    const std::string text = Network::TextOf(network.Lowest()) + "/" + std::to_string(network.PrefixLength);
    if (!network.HasHost(address))
    {
        return (address == network.Lowest() ? "is the address of the network " : "is the broadcast address of ") + text;
    }
    return {};
}

Refusal CheckSettings(const Device::Interface& settings)
{
    const IPv4 mask = Network::ParseAddress(settings.SubNetMask).value_or(0);
    if (mask == 0 || std::countl_one(mask) != std::popcount(mask))
    {
        return ChangeRefusal{Code::BadMask, settings.SubNetMask + " is no subnet mask"};
    }
    Network network{Network::ParseAddress(settings.IPAddress).value_or(0), std::popcount(mask)};
    if (const std::string wrong = WrongWith(network); !wrong.empty())
    {
        return ChangeRefusal{Code::BadAddress, settings.IPAddress + " " + wrong};
    }
    if (!settings.DefaultGateway.empty() &&
        !network.HasHost(Network::ParseAddress(settings.DefaultGateway).value_or(0)))
    {
        return ChangeRefusal{Code::GatewayOutside,
                             "the gateway " + settings.DefaultGateway + " is no host of the network " +
                                 Network::TextOf(network.Lowest()) + "/" + std::to_string(network.PrefixLength)};
    }
    return std::nullopt;
}

std::string NameOf(const Device& device)
{
    return device.HostName + " (" + device.MainInterface().MACAddress + ")";
}

Refusal CheckNameTaken(const ChangeRequest& request,
                       const DeviceRow* target,
                       const DeviceTable& devices,
                       std::span<const ChangeRequest> others)
{
    for (const DeviceRow* const row : devices.Rows())
    {
        if (row != target && row->IsHere() && IsSameName(row->Latest->HostName, request.HostName))
        {
            return ChangeRefusal{Code::NameTaken, '"' + request.HostName + "\" is the name of " +
                                                      row->Latest->MainInterface().MACAddress};
        }
    }
    for (const ChangeRequest& other : others)
    {
        if (other.Kind != ChangeRequest::ChangeKind::Configure && IsSameName(other.HostName, request.HostName) &&
            (target == nullptr || !other.IsAbout(*target->Latest)))
        {
            return ChangeRefusal{Code::NameTaken, '"' + request.HostName + "\" is the name that " +
                                                      other.Interface.MACAddress + other.Interface.IPAddress +
                                                      " is about to take"};
        }
    }
    return std::nullopt;
}

Refusal CheckAddressTaken(const ChangeRequest& request,
                          const DeviceTable& devices,
                          std::span<const ChangeRequest> others)
{
    const Device::Interface& wanted = request.Interface;
    const auto takes = [&wanted](const Device::Interface& other) {
        return other.MACAddress != wanted.MACAddress && other.IPAddress == wanted.IPAddress;
    };
    for (const DeviceRow* const row : devices.Rows())
    {
        const auto& interfaces = row->Latest->Interfaces();
        const auto found = std::ranges::find_if(interfaces, takes);
        if (row->IsHere() && found != interfaces.end())
        {
            return ChangeRefusal{Code::AddressTaken, wanted.IPAddress + " is the address of " + found->MACAddress +
                                                         ", an interface of " + row->Latest->HostName};
        }
    }
    for (const ChangeRequest& other : others)
    {
        if (other.Kind == ChangeRequest::ChangeKind::Configure && takes(other.Interface))
        {
            return ChangeRefusal{Code::AddressTaken, wanted.IPAddress + " is the address that " +
                                                         other.Interface.MACAddress + " is about to take"};
        }
    }
    return std::nullopt;
}
} // namespace

const char* ChangeRefusal::CodeName() const
{
    static constexpr const char* Names[] = {"bad-name", "name-read-only", "unknown-device",  "name-taken",
                                            "bad-mask", "bad-address",    "gateway-outside", "address-taken",
                                            "no-route", "send-failed",    "left-out",        "dry-run"};
    return Names[static_cast<std::size_t>(Code)];
}

std::string ChangeRefusal::ToString() const
{
    return Text + " (" + CodeName() + ")";
}

std::string ChangeRefusal::ToJson() const
{
    return JsonText().Text("Code", CodeName()).Text("Text", Text).Take();
}

std::optional<ChangeRefusal> ChangeChecks::FindInValues(const ChangeRequest& request, const ChangeOptions& options)
{
    if (options.GivesBack)
    {
        return std::nullopt;
    }
    return request.Kind == ChangeRequest::ChangeKind::Configure ? CheckSettings(request.Interface)
                                                                : CheckName(request.HostName);
}

std::optional<ChangeRefusal> ChangeChecks::Find(const ChangeRequest& request,
                                                const ChangeOptions& options,
                                                const DeviceTable& devices,
                                                std::span<const ChangeRequest> others)
{
    if (Refusal refusal = FindInValues(request, options))
    {
        return refusal;
    }
    const bool isNaming = request.Kind != ChangeRequest::ChangeKind::Configure;
    const DeviceRow* const target = request.TargetIn(devices);
    const bool isKnown = target != nullptr && target->IsHere();
    if (!isKnown && !options.Force)
    {
        return ChangeRefusal{
            Code::UnknownDevice,
            "no device with the address " +
                (request.Interface.MACAddress.empty() ? request.Interface.IPAddress : request.Interface.MACAddress) +
                " has answered"};
    }
    if (isKnown && isNaming && target->Latest->IsHostNameReadOnly)
    {
        return ChangeRefusal{Code::NameReadOnly, NameOf(*target->Latest) + " does not let its name be changed"};
    }
    if (options.Force)
    {
        return std::nullopt;
    }
    return isNaming ? CheckNameTaken(request, target, devices, others) : CheckAddressTaken(request, devices, others);
}
} // namespace Zent::Discovery::Inventory
