#include "support/FakeDiscoverySocket.h"

#include "system/Net/Sockets/SocketException.h"

#include <chrono>
#include <cstring>

namespace Tests
{
using Nfx::System::Array;
using Nfx::System::Boolean;
using Nfx::System::Int32;
using Nfx::System::ObjectClosedException;
using Nfx::System::SmartPointer;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using Nfx::System::Net::Sockets::Socket;
using Nfx::System::Net::Sockets::SocketError;
using Nfx::System::Net::Sockets::SocketException;

namespace
{
const char SourceName[] = "tests/support/FakeDiscoverySocket";
}

void FakeDiscoverySocket::Add(Reception reception)
{
    const std::lock_guard lock(mutex);
    receptions.push_back(std::move(reception));
    changed.notify_all();
}

void FakeDiscoverySocket::Deliver(const std::string& datagram)
{
    Add([datagram] { return datagram; });
}

void FakeDiscoverySocket::FailReceive(const SocketError& error)
{
    Add([error]() -> std::string { throw SocketException(error, SourceName, __LINE__); });
}

void FakeDiscoverySocket::CloseUnderReceiver()
{
    Add([]() -> std::string { throw ObjectClosedException(SourceName, __LINE__); });
}

void FakeDiscoverySocket::FailSends(std::function<void()> failure)
{
    const std::lock_guard lock(mutex);
    sendFailure = std::move(failure);
}

std::vector<FakeDiscoverySocket::Sent> FakeDiscoverySocket::TakeSent()
{
    const std::lock_guard lock(mutex);
    return std::exchange(sent, {});
}

bool FakeDiscoverySocket::WaitForSent(std::size_t count)
{
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, std::chrono::seconds(10), [&] { return sent.size() >= count; });
}

SmartPointer<Socket> FakeDiscoverySocket::GetSocket()
{
    return nullptr;
}

Int32 FakeDiscoverySocket::Receive(std::uint8_t* buffer, Int32 size, IPEndPoint& remoteEndPoint)
{
    Reception next;
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return isShutDown || !receptions.empty(); });
        if (isShutDown)
        {
            throw SocketException(SocketError::Shutdown, SourceName, __LINE__);
        }
        next = std::move(receptions.front());
        receptions.pop_front();
    }
    const std::string datagram = next();
    if (datagram.size() > static_cast<std::size_t>(std::int32_t{size}))
    {
        throw SocketException(SocketError::MessageSize, SourceName, __LINE__);
    }
    std::memcpy(buffer, datagram.data(), datagram.size());
    remoteEndPoint = IPEndPoint(IPAddress::Parse("192.0.2.1"), 12000);
    return static_cast<std::int32_t>(datagram.size());
}

Int32 FakeDiscoverySocket::Send(const std::uint8_t* bytes, Int32 count, const IPAddress& targetAddress)
{
    const std::lock_guard lock(mutex);
    if (sendFailure)
    {
        sendFailure();
    }
    sent.push_back({std::string(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(std::int32_t{count})),
                    targetAddress.ToString().CString()});
    changed.notify_all();
    return count;
}

Int32 FakeDiscoverySocket::Send(const Array<std::uint8_t>& bytes, const IPAddress& targetAddress)
{
    return Send(bytes.Data(), bytes.Length(), targetAddress);
}

Int32 FakeDiscoverySocket::Broadcast(const std::uint8_t* bytes, Int32 count)
{
    return Send(bytes, count, IPAddress::Broadcast());
}

Int32 FakeDiscoverySocket::Broadcast(const Array<std::uint8_t>& bytes)
{
    return Send(bytes, IPAddress::Broadcast());
}

void FakeDiscoverySocket::Shutdown()
{
    const std::lock_guard lock(mutex);
    isShutDown = true;
    changed.notify_all();
}

Boolean FakeDiscoverySocket::IsShutDown()
{
    return isShutDown.load();
}

void FakeDiscoverySocket::Close()
{
    isClosed = true;
}

Boolean FakeDiscoverySocket::HasShutDown()
{
    return isShutDown.load();
}

Boolean FakeDiscoverySocket::IsClosed()
{
    return isClosed.load();
}

Int32 FakeDiscoverySocket::GetLocalPort()
{
    return 12001;
}

Int32 FakeDiscoverySocket::GetRemotePort()
{
    return 12000;
}
} // namespace Tests
