#include "system/Net/Sockets/UdpClient.h"

namespace Nfx::System::Net::Sockets
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Net/Sockets/UdpClient";
} // namespace

void UdpClient::SetClient(const SmartPointer<Socket>& socket)
{
    client = socket;
}

SmartPointer<Socket> UdpClient::Client() const
{
    return client;
}

Int32 UdpClient::Send(const Array<std::uint8_t>& bytes, const IPEndPoint& remoteEndPoint)
{
    return RequireClient().SendTo(bytes.Data(), bytes.Length(), remoteEndPoint);
}

Int32 UdpClient::Send(const std::uint8_t* bytes, std::int32_t count, const IPEndPoint& remoteEndPoint)
{
    return RequireClient().SendTo(bytes, count, remoteEndPoint);
}

Int32 UdpClient::Receive(std::uint8_t* buffer, std::int32_t size, IPEndPoint& remoteEndPoint)
{
    return RequireClient().ReceiveFrom(buffer, size, remoteEndPoint);
}

void UdpClient::Close() noexcept
{
    if (!client.IsNull())
    {
        client->Close();
    }
}

Socket& UdpClient::RequireClient() const
{
    if (client.IsNull())
    {
        throw NullReferenceException(SourceName, __LINE__);
    }
    return *client;
}
} // namespace Nfx::System::Net::Sockets
