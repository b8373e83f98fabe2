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
    {
    }

    /// The MAC address stays empty, which no device owns.
    SendChangeYourHostNameAction(const Nfx::System::String& newHostName, const Nfx::System::Net::IPAddress& ipAddress)
        : ServerAction(ServerActionType::SendChangeYourHostNameMessage)
        , newHostName(newHostName)
        , ipAddress(ipAddress)
    {
    }

    const Nfx::System::String& NewHostName() const noexcept { return newHostName; }

    /// The broadcast address stands for a request to the owner of a MAC address, whoever gave it.
    bool TargetsMACAddress() const { return ipAddress == Nfx::System::Net::IPAddress::Broadcast(); }

    const MACAddress& TargetedMACAddress() const noexcept { return macAddress; }

    const Nfx::System::Net::IPAddress& TargetedIPAddress() const noexcept { return ipAddress; }

private:
    const Nfx::System::String newHostName;
    const MACAddress macAddress;
    const Nfx::System::Net::IPAddress ipAddress;
};
} // namespace Zent::Discovery::Server
