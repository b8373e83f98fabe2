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

    Nfx::System::SmartPointer<Nfx::System::Net::Sockets::Socket> GetSocket() override;
    Nfx::System::Int32 Receive(std::uint8_t* buffer,
                               Nfx::System::Int32 size,
                               Nfx::System::Net::IPEndPoint& remoteEndPoint) override;
    Nfx::System::Int32 Send(const std::uint8_t* bytes,
                            Nfx::System::Int32 count,
                            const Nfx::System::Net::IPAddress& targetAddress) override;
    Nfx::System::Int32 Send(const Nfx::System::Array<std::uint8_t>& bytes,
                            const Nfx::System::Net::IPAddress& targetAddress) override;
    Nfx::System::Int32 Broadcast(const std::uint8_t* bytes, Nfx::System::Int32 count) override;
    Nfx::System::Int32 Broadcast(const Nfx::System::Array<std::uint8_t>& bytes) override;
    void Shutdown() override;
    Nfx::System::Boolean IsShutDown() override;
    void Close() override;
    Nfx::System::Boolean HasShutDown() override;
    Nfx::System::Boolean IsClosed() override;
    Nfx::System::Int32 GetLocalPort() override;
    Nfx::System::Int32 GetRemotePort() override;

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
