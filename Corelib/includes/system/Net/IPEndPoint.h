#pragma once

#include "system/Net/EndPoint.h"
#include "system/Net/IPAddress.h"

namespace Nfx::System::Net
{
/// An IPv4 address and a port. Copied by value; not locked.
class IPEndPoint final : public EndPoint
{
public:
    /// @throws ArgumentOutOfRangeException when the port is not 0 to 65535.
    IPEndPoint(const IPAddress& address, std::int32_t port);

    /// @throws ArgumentException when the address is not of the family InterNetwork.
    explicit IPEndPoint(const SocketAddress& address);

    const IPAddress& Address() const noexcept { return address; }

    Int32 Port() const noexcept { return port; }

    /// InterNetwork, always.
    AddressFamily Family() const override;
    SocketAddress Serialize() const override;

    /// @throws ArgumentException when the address is not of the family InterNetwork.
    SmartPointer<EndPoint> Create(const SocketAddress& address) const override;

    /// True for another IPEndPoint of the same address and port.
    Boolean Equals(const Object* object) const override;
    Int32 GetHashCode() const override;

    /// The address, a colon, the port.
    String ToString() const override;

    friend bool operator==(const IPEndPoint& left, const IPEndPoint& right) noexcept
    {
        return left.address == right.address && left.port == right.port;
    }

private:
    IPAddress address;
    std::int32_t port;
};
} // namespace Nfx::System::Net
