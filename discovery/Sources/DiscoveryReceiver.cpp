#include "Discovery/DiscoveryReceiver.h"

#include "Discovery/ServiceThread.h"
#include "Discovery/SocketFailure.h"

#include <algorithm>
#include <atomic>

namespace Zent::Discovery
{
using Nfx::System::ArgumentNullException;
using Nfx::System::Exception;
using Nfx::System::Int32;
using Nfx::System::MakeDelegate;
using Nfx::System::ObjectClosedException;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using Nfx::System::Net::Sockets::SocketError;
using Nfx::System::Net::Sockets::SocketException;
using Nfx::System::Threading::Thread;
using Nfx::System::Threading::ThreadPriority;

namespace
{
const char SourceName[] = "Sources/DiscoveryReceiver";

constexpr std::int32_t LargestMessageSize = 65536; // no datagram has more bytes
std::atomic<std::int32_t> messageSize{2048};       // bytes; doubled by receiver threads, read by any thread

const SmartPointer<DiscoveryMessageParser>& NotNull(const SmartPointer<DiscoveryMessageParser>& parser)
{
    if (parser.IsNull())
    {
        throw ArgumentNullException(SourceName, __LINE__);
    }
    return parser;
}
} // namespace

DiscoveryReceiver::DiscoveryReceiver(const SmartPointer<IDiscoverySocket>& socket,
                                     const SmartPointer<DiscoveryMessageParser>& parser)
    : DiscoveryWorker(socket, "Receiver", MakeDelegate(*this, &DiscoveryReceiver::Run), ThreadPriority::Highest)
    , parser(NotNull(parser))
{
}

void DiscoveryReceiver::Stop()
{
    Log().Write("Stopping receiver", LogStreamLevel::Critical);
    RequestStop();
    DiscoveryWorker::Stop();
    Log().Write("---Receiver stopped---", LogStreamLevel::Critical);
}

std::int32_t DiscoveryReceiver::MessageSize() noexcept
{
    return messageSize;
}

void DiscoveryReceiver::Run()
{
    const ServiceThread mark;
    Log().Guard("Receiver failed : ending worker.", [this] { ReceiveUntilStopped(); });
    ReportEnd();
}

void DiscoveryReceiver::ReportEnd()
{
    // A service must not go on with a dead receiver, and nobody else would tell. So a report that fails, for want of
    // memory or of a thread, is repeated until it succeeds or a stop makes it superfluous. Most shortages are short.
    constexpr std::int32_t LongestPauseMilliseconds = 500;
    for (std::int32_t pause = 20; !Log().Guard("Receiver failed to report its end.", [this] { RaiseSocketClosed(); });
         pause = std::min(2 * pause, LongestPauseMilliseconds))
    {
        Thread::Sleep(pause);
    }
}

void DiscoveryReceiver::ReceiveUntilStopped()
{
    IPEndPoint sender(IPAddress::Broadcast(), 0);
    std::vector<std::uint8_t> buffer;
    Log().Write("---Listening...", LogStreamLevel::Critical);
    while (ReceiveOne(buffer, sender))
    {
    }
}

bool DiscoveryReceiver::ReceiveOne(std::vector<std::uint8_t>& buffer, IPEndPoint& sender)
{
    buffer.resize(static_cast<std::size_t>(MessageSize()));
    std::int32_t count = 0;
    try
    {
        count = Socket().Receive(buffer.data(), static_cast<std::int32_t>(buffer.size()), sender);
    }
    catch (const SocketException& exception)
    {
        return GoesOnAfter(exception);
    }
    catch (const ObjectClosedException& exception)
    {
        LogEnd("The socket has been closed : ending worker.", exception);
        return false;
    }
    return HandOver(buffer.data(), count, sender);
}

bool DiscoveryReceiver::HandOver(const std::uint8_t* bytes, std::int32_t count, const IPEndPoint& sender)
{
    if (count == 0 && IsStopRequested())
    {
        return false;
    }
    Log().Write("Message received", LogStreamLevel::Debug);
    const auto text =
        SmartPointer<String>::Create(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
    parser->Enqueue(SmartPointer<Datagram>::Create(text, sender));
    return !IsStopRequested();
}

bool DiscoveryReceiver::GoesOnAfter(const SocketException& exception)
{
    const SocketError error = exception.GetSocketError();
    if (error == SocketError::MessageSize)
    {
        Log().Write("MessageSize is too low : " + Int32(MessageSize()).ToString() + "! Doubling it...", exception);
        messageSize = std::min(2 * MessageSize(), LargestMessageSize);
        return !IsStopRequested();
    }
    const SocketFailure failure = SocketFailure::OfReceive(error);
    if (failure.Result == SocketFailure::Outcome::Closed)
    {
        LogEnd(failure.Text, exception);
    }
    else
    {
        failure.Write(Log(), exception);
    }
    return failure.Result == SocketFailure::Outcome::Passing && !IsStopRequested();
}

void DiscoveryReceiver::LogEnd(const char* text, const Exception& exception)
{
    if (IsStopRequested())
    {
        Log().Write(text, LogStreamLevel::Critical); // it is what the stop has asked for, and no failure
    }
    else
    {
        Log().Write(text, exception);
    }
}
} // namespace Zent::Discovery
