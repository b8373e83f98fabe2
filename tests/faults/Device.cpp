#include "Device.h"

#include "Os/OsFaulty.h"
#include "system/Net/IPEndPoint.h"
#include "system/Net/Sockets/ProtocolType.h"
#include "system/Net/Sockets/SocketOptionLevel.h"
#include "system/Net/Sockets/SocketOptionName.h"
#include "system/Net/Sockets/SocketType.h"

#include <gtest/gtest.h>

#include <array>

namespace Tests
{
using Nfx::Os::ISocket;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using Nfx::System::Net::SocketAddress;
using Nfx::System::Net::Sockets::ProtocolType;
using Nfx::System::Net::Sockets::SocketOptionLevel;
using Nfx::System::Net::Sockets::SocketOptionName;
using Nfx::System::Net::Sockets::SocketType;

namespace
{
constexpr std::int32_t DevicePort = 12000;
constexpr std::int32_t ServerPort = 12001;
constexpr std::int32_t ReceiveMilliseconds = 20;

ISocket& Sockets()
{
    return Nfx::Os::RealPlatform().Socket();
}

ISocket::Handle Open()
{
    ISocket::Handle handle = 0;
    EXPECT_EQ(ISocket::Success, Sockets().Open(SocketType::Dgram, ProtocolType::Udp, handle));
    return handle;
}

void Close(ISocket::Handle handle)
{
    Sockets().BeginClose(handle);
    Sockets().EndClose(handle);
}
} // namespace

Device::Device()
    : handle(Open())
{
    const SocketAddress address = IPEndPoint(IPAddress::Any(), DevicePort).Serialize();
    EXPECT_EQ(ISocket::Success, Sockets().SetOption(handle, SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout,
                                                    ReceiveMilliseconds));
    EXPECT_EQ(ISocket::Success, Sockets().Bind(handle, address.Data()));
}

Device::~Device()
{
    Close(handle);
}

void Device::Send(const std::string& text)
{
    const SocketAddress address = IPEndPoint(IPAddress::Parse("127.0.0.1"), ServerPort).Serialize();
    std::int32_t sent = 0;
    Sockets().SendTo(handle, reinterpret_cast<const std::uint8_t*>(text.data()), static_cast<std::int32_t>(text.size()),
                     address.Data(), sent);
}

bool Device::Hears(std::string_view text, std::chrono::milliseconds deadline)
{
    const auto end = std::chrono::steady_clock::now() + deadline;
    std::array<std::uint8_t, 4096> buffer{};
    do
    {
        SocketAddress sender;
        std::int32_t received = 0;
        if (Sockets().ReceiveFrom(handle, buffer.data(), static_cast<std::int32_t>(buffer.size()), sender.Data(),
                                  received) == ISocket::Success &&
            std::string_view(reinterpret_cast<const char*>(buffer.data()), static_cast<std::size_t>(received))
                    .find(text) != std::string_view::npos)
        {
            return true;
        }
    } while (std::chrono::steady_clock::now() < end);
    return false;
}

bool Device::IsServerPortFree()
{
    const ISocket::Handle handle = Open();
    const SocketAddress address = IPEndPoint(IPAddress::Any(), ServerPort).Serialize();
    const bool isFree = Sockets().Bind(handle, address.Data()) == ISocket::Success;
    Close(handle);
    return isFree;
}
} // namespace Tests
