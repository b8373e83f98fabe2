#pragma once

#include "Discovery/DiscoveryMessageParser.h"
#include "Discovery/DiscoveryWorker.h"
#include "system/Net/Sockets/SocketException.h"

#include <cstdint>
#include <vector>

namespace Zent::Discovery
{
/// Receives datagrams on a thread of its own and queues each one with the message parser. Errors that have no text of
/// their own are logged by their name, or their number where they have none.
/// To shut down: call Stop, which closes the socket and joins the thread; then release the receiver.
class DiscoveryReceiver final : public DiscoveryWorker
{
public:
    /// Prepares a receiver on an open socket; its thread runs from Start on.
    /// @throws ArgumentNullException when socket or parser is null.
    DiscoveryReceiver(const Nfx::System::SmartPointer<IDiscoverySocket>& socket,
                      const Nfx::System::SmartPointer<DiscoveryMessageParser>& parser);

    /// Returns once the thread has ended; waits without limit. Any thread but the receiver's own.
    void Stop() override;

    /// The size of the receive buffer in bytes. One for the whole process: it doubles with each datagram that does not
    /// fit, which is lost, and never shrinks.
    static std::int32_t MessageSize() noexcept;

private:
    void Run();
    void ReportEnd();
    void ReceiveUntilStopped();

    /// Receives one datagram into the buffer; false ends the loop.
    bool ReceiveOne(std::vector<std::uint8_t>& buffer, Nfx::System::Net::IPEndPoint& sender);
    bool HandOver(const std::uint8_t* bytes, std::int32_t count, const Nfx::System::Net::IPEndPoint& sender);
    bool GoesOnAfter(const Nfx::System::Net::Sockets::SocketException& exception);
    void LogEnd(const char* text, const Nfx::System::Exception& exception);

    const Nfx::System::SmartPointer<DiscoveryMessageParser> parser;
};
} // namespace Zent::Discovery
