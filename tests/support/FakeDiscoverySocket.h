#pragma once

#include "Discovery/IDiscoverySocket.h"
#include "system/Net/Sockets/SocketError.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace Tests
{
/// A discovery socket that receives and fails as a test tells it to.
class FakeDiscoverySocket final : public Zent::Discovery::IDiscoverySocket
{
    using Boolean = Nfx::System::Boolean;
    using Bytes = Nfx::System::Array<std::uint8_t>;
    using Int32 = Nfx::System::Int32;
    using IPAddress = Nfx::System::Net::IPAddress;

public:
    struct Sent
    {
        std::string Text;
        std::string Target;
    };

    /// What a Receive returns next; a datagram larger than the buffer fails as a real one does.
    void Deliver(const std::string& datagram);
    void FailReceive(const Nfx::System::Net::Sockets::SocketError& error);
    void CloseUnderReceiver();

    /// What every Send throws from now on; nothing when empty.
    void FailSends(std::function<void()> failure);

    std::vector<Sent> TakeSent();
    bool WaitForSent(std::size_t count);

    Int32 Receive(std::uint8_t* buffer, Int32 size, Nfx::System::Net::IPEndPoint& remoteEndPoint) override;
    Int32 Send(const std::uint8_t* bytes, Int32 count, const IPAddress& targetAddress) override;
    void Shutdown() override;

    Nfx::System::SmartPointer<Nfx::System::Net::Sockets::Socket> GetSocket() override { return nullptr; }

    Int32 Send(const Bytes& bytes, const IPAddress& target) override
    {
        return Send(bytes.Data(), bytes.Length(), target);
    }

    Int32 Broadcast(const std::uint8_t* bytes, Int32 count) override
    {
        return Send(bytes, count, IPAddress::Broadcast());
    }

    Int32 Broadcast(const Bytes& bytes) override { return Send(bytes, IPAddress::Broadcast()); }

    Boolean IsShutDown() override { return isShutDown.load(); }

    void Close() override { isClosed = true; }

    Boolean HasShutDown() override { return isShutDown.load(); }

    Boolean IsClosed() override { return isClosed.load(); }

    Int32 GetLocalPort() override { return 12001; }

    Int32 GetRemotePort() override { return 12000; }

private:
    using Reception = std::function<std::string()>;

    void Add(Reception reception);

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Reception> receptions;  // guarded by mutex
    std::vector<Sent> sent;            // guarded by mutex
    std::function<void()> sendFailure; // guarded by mutex
    std::atomic<bool> isShutDown{false};
    std::atomic<bool> isClosed{false};
};
} // namespace Tests
