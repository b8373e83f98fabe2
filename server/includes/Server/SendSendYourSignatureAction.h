#pragma once

#include "Discovery/MACAddress.h"
#include "Server/ServerAction.h"
#include "system/Net/IPAddress.h"

namespace Zent::Discovery::Server
{
/// Asks one device for its signature: the one that owns a MAC address, or the one at an IP address.
class SendSendYourSignatureAction final : public ServerAction
{
public:
    /// The IP address becomes the broadcast address: whoever owns the MAC address is to hear of it.
    explicit SendSendYourSignatureAction(const MACAddress& macAddress)
        : ServerAction(ServerActionType::SendSendYourSignatureMessage)
        , macAddress(macAddress)
        , ipAddress(Nfx::System::Net::IPAddress::Broadcast())
    {
    }

    /// The MAC address stays empty, which no device owns.
    explicit SendSendYourSignatureAction(const Nfx::System::Net::IPAddress& ipAddress)
        : ServerAction(ServerActionType::SendSendYourSignatureMessage)
        , ipAddress(ipAddress)
    {
    }

    /// The broadcast address stands for a request to the owner of a MAC address, whoever gave it.
    bool TargetsMACAddress() const { return ipAddress == Nfx::System::Net::IPAddress::Broadcast(); }

    const MACAddress& TargetedMACAddress() const noexcept { return macAddress; }

    const Nfx::System::Net::IPAddress& TargetedIPAddress() const noexcept { return ipAddress; }

private:
    const MACAddress macAddress;
    const Nfx::System::Net::IPAddress ipAddress;
};
} // namespace Zent::Discovery::Server
