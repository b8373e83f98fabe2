#include "system/Net/IPEndPoint.h"

namespace Nfx::System::Net
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Net/IPEndPoint";
constexpr std::int32_t MaxPort = 65535;
} // namespace

IPEndPoint::IPEndPoint(const IPAddress& address, std::int32_t port)
    : address(address)
    , port(port)
{
    if (port < 0 || port > MaxPort)
    {
        throw ArgumentOutOfRangeException(SourceName, __LINE__);
    }
}

IPEndPoint::IPEndPoint(const SocketAddress& address)
    : address(std::int64_t{address.Address()})
    , port(address.Port())
{
    if (address.Family() != AddressFamily::InterNetwork)
    {
        throw ArgumentException(SourceName, __LINE__);
    }
}

AddressFamily IPEndPoint::Family() const
{
    return AddressFamily::InterNetwork;
}

SocketAddress IPEndPoint::Serialize() const
{
    return SocketAddress(AddressFamily::InterNetwork, port, static_cast<std::uint32_t>(std::int64_t{address.Value()}));
}

SmartPointer<EndPoint> IPEndPoint::Create(const SocketAddress& address) const
{
    return SmartPointer<EndPoint>(new IPEndPoint(address));
}

Boolean IPEndPoint::Equals(const Object* object) const
{
    const IPEndPoint* other = dynamic_cast<const IPEndPoint*>(object);
    return other != nullptr && *other == *this;
}

Int32 IPEndPoint::GetHashCode() const
{
    return address.GetHashCode() ^ port;
}

String IPEndPoint::ToString() const
{
    return address.ToString() + ":" + Int32(port).ToString();
}
} // namespace Nfx::System::Net
