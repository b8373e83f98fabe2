#include "support/FakeDiscoverySocket.h"

#include "system/Net/Sockets/SocketException.h"

#include <chrono>
#include <cstring>

namespace Tests
{
using namespace Nfx::System;
using namespace Nfx::System::Net;
using namespace Nfx::System::Net::Sockets;

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

void FakeDiscoverySocket::Shutdown()
{
    const std::lock_guard lock(mutex);
    isShutDown = true;
    changed.notify_all();
}
} // namespace Tests
