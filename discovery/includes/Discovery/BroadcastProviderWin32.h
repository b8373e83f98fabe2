#pragma once

#include "Discovery/ComponentLog.h"
#include "Discovery/IBroadcastProvider.h"
#include "Discovery/IDiscoverySocket.h"
#include "system/Collections/Generic/List.h"
#include "system/Net/IPAddress.h"
#include "system/SmartPointer.h"

namespace Zent::Discovery
{
/// Opens a socket on each local address for each send: the broadcast leaves through the interface of that address. An
/// answer to the address that the socket takes before it is connected is passed on to the server's main socket.
/// Works on every platform; the name stays from the first one. Sends on one thread at a time.
class BroadcastProviderWin32 final : public IBroadcastProvider
{
public:
    using AddressList = Nfx::System::Collections::Generic::List<Nfx::System::SmartPointer<Nfx::System::Net::IPAddress>>;

    /// Sends from these addresses, in this order; the list must not change afterwards. An empty list sends nothing.
    /// @throws ArgumentNullException when addresses is null.
    explicit BroadcastProviderWin32(const Nfx::System::SmartPointer<AddressList>& addresses);

    void Send(const std::uint8_t* bytes, Nfx::System::Int32 count) override;

private:
    Nfx::System::SmartPointer<IDiscoverySocket> OpenSocket(const Nfx::System::Net::IPAddress& address) const;
    void SendFrom(const Nfx::System::Net::IPAddress& address,
                  const std::uint8_t* bytes,
                  Nfx::System::Int32 count) const;

    const ComponentLog log;
    const Nfx::System::SmartPointer<AddressList> addresses;
};
} // namespace Zent::Discovery
