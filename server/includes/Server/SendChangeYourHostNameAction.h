#pragma once

#include "Discovery/MACAddress.h"
#include "Server/ServerAction.h"
#include "system/Net/IPAddress.h"
#include "system/String.h"

namespace Zent::Discovery::Server
{
/// Gives one device a new host name: the one that owns a MAC address, or the one at an IP address.
class SendChangeYourHostNameAction final : public ServerAction
{
public:
    /// The IP address becomes the broadcast address: whoever owns the MAC address is to hear of it.
    SendChangeYourHostNameAction(const Nfx::System::String& newHostName, const MACAddress& macAddress)
        : ServerAction(ServerActionType::SendChangeYourHostNameMessage)
        , newHostName(newHostName)
        , macAddress(macAddress)
        , ipAddress(Nfx::System::Net::IPAddress::Broadcast())
        , targetsMACAddress(true)
    {
    }

    /// The MAC address stays empty.
    SendChangeYourHostNameAction(const Nfx::System::String& newHostName, const Nfx::System::Net::IPAddress& ipAddress)
        : ServerAction(ServerActionType::SendChangeYourHostNameMessage)
        , newHostName(newHostName)
        , ipAddress(ipAddress)
        , targetsMACAddress(false)
    {
    }

    const Nfx::System::String& NewHostName() const noexcept { return newHostName; }

    bool TargetsMACAddress() const noexcept { return targetsMACAddress; }

    const MACAddress& TargetedMACAddress() const noexcept { return macAddress; }

    const Nfx::System::Net::IPAddress& TargetedIPAddress() const noexcept { return ipAddress; }

private:
    const Nfx::System::String newHostName;
    const MACAddress macAddress;
    const Nfx::System::Net::IPAddress ipAddress;
    const bool targetsMACAddress;
};
} // namespace Zent::Discovery::Server
