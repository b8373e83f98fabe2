#pragma once

#include "Discovery/ComponentLog.h"
#include "Discovery/IBroadcastProvider.h"
#include "Discovery/IDiscoverySocket.h"
#include "system/Collections/Generic/List.h"
#include "system/Net/IPAddress.h"
#include "system/SmartPointer.h"

#include <vector>

namespace Zent::Discovery
{
/// Sends from a socket on each local address: the broadcast leaves through the interface of that address. The sockets
/// stay open for the next send, and one that fails is replaced, since its address may have gone and come back.
/// Works on every platform; the name stays from the first one. Sends on one thread at a time.
class BroadcastProviderWin32 final : public IBroadcastProvider
{
public:
    using AddressList = Nfx::System::Collections::Generic::List<Nfx::System::SmartPointer<Nfx::System::Net::IPAddress>>;

    /// Sends from these addresses, in this order; the list must not change afterwards. An empty list sends nothing.
    /// @throws ArgumentNullException when addresses is null.
    explicit BroadcastProviderWin32(const Nfx::System::SmartPointer<AddressList>& addresses);

    void Send(const std::uint8_t* bytes, Nfx::System::Int32 count) override;

    /// Closes the sockets.
    void Release() override;

private:
    using SocketPointer = Nfx::System::SmartPointer<IDiscoverySocket>;

    SocketPointer OpenSocket(const Nfx::System::Net::IPAddress& address) const;
    void SendFrom(const Nfx::System::Net::IPAddress& address,
                  SocketPointer& socket,
                  const std::uint8_t* bytes,
                  Nfx::System::Int32 count) const;

    const ComponentLog log;
    const Nfx::System::SmartPointer<AddressList> addresses;
    std::vector<SocketPointer> sockets; // one for each address, null while it has none; sending thread only
};
} // namespace Zent::Discovery
