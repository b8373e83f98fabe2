#include "support/Device.h"

#include "Os/IOs.h"
#include "Os/ISocket.h"
#include "system/Net/IPEndPoint.h"
#include "system/Net/Sockets/ProtocolType.h"
#include "system/Net/Sockets/SocketOptionLevel.h"
#include "system/Net/Sockets/SocketOptionName.h"
#include "system/Net/Sockets/SocketType.h"

#include <array>
#include <stdexcept>

namespace Tests
{
using Nfx::Os::ISocket;
using namespace Nfx::System::Net;
using namespace Nfx::System::Net::Sockets;

namespace
{
constexpr std::int32_t ServerPort = 12001;

ISocket& Sockets()
{
    return Nfx::Os::Platform().Socket();
}

ISocket::Handle Open()
{
    ISocket::Handle handle = 0;
    if (Sockets().Open(SocketType::Dgram, ProtocolType::Udp, handle) != ISocket::Success)
    {
        throw std::runtime_error("no socket for the device");
    }
    return handle;
}

void Close(ISocket::Handle handle)
{
    Sockets().BeginClose(handle);
    Sockets().EndClose(handle);
}

bool IsBound(ISocket::Handle handle, std::int32_t port)
{
    return Sockets().Bind(handle, IPEndPoint(IPAddress::Any(), port).Serialize().Data()) == ISocket::Success;
}

void SendTo(ISocket::Handle handle, const std::string& text, const SocketAddress& address)
{
    std::int32_t sent = 0;
    Sockets().SendTo(handle, reinterpret_cast<const std::uint8_t*>(text.data()), static_cast<std::int32_t>(text.size()),
                     address.Data(), sent);
}

/// Waits for some milliseconds; empty when nothing has come.
std::string Receive(ISocket::Handle handle, SocketAddress& sender)
{
    std::array<std::uint8_t, 4096> buffer{};
    std::int32_t received = 0;
    if (Sockets().ReceiveFrom(handle, buffer.data(), static_cast<std::int32_t>(buffer.size()), sender.Data(),
                              received) != ISocket::Success)
    {
        received = 0;
    }
    return {reinterpret_cast<const char*>(buffer.data()), static_cast<std::size_t>(received)};
}
} // namespace

Device::Device(std::int32_t port)
    : handle(Open())
{
    constexpr std::int32_t Milliseconds = 20;
    Sockets().SetOption(handle, SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, Milliseconds);
    if (!IsBound(handle, port))
    {
        Close(handle);
        throw std::runtime_error("the device's port is taken");
    }
}

Device::~Device()
{
    Close(handle);
}

void Device::Send(const std::string& text)
{
    SendTo(handle, text, IPEndPoint(IPAddress::Parse("127.0.0.1"), ServerPort).Serialize());
}

bool Device::Hears(std::string_view text, std::chrono::milliseconds deadline)
{
    const auto end = std::chrono::steady_clock::now() + deadline;
    SocketAddress sender;
    do
    {
        if (Receive(handle, sender).find(text) != std::string::npos)
        {
            return true;
        }
    } while (std::chrono::steady_clock::now() < end);
    return false;
}

void Device::AnswerUntil(const std::atomic<bool>& isOver, const std::string& answer)
{
    SocketAddress sender;
    while (!isOver)
    {
        if (!Receive(handle, sender).empty())
        {
            SendTo(handle, answer, sender);
        }
    }
}

bool Device::IsServerPortFree()
{
    const ISocket::Handle handle = Open();
    const bool isFree = IsBound(handle, ServerPort);
    Close(handle);
    return isFree;
}
} // namespace Tests
