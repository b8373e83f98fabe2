#include "Discovery/SocketFailure.h"

#include <algorithm>
#include <iterator>

namespace Zent::Discovery
{
using Nfx::System::Net::Sockets::SocketError;
using Nfx::System::Net::Sockets::SocketException;

namespace
{
struct Row
{
    std::int32_t Error;
    SocketFailure::Outcome Result;
    const char* Receiving; // null where a receive does not fail that way
    const char* Sending;   // likewise
};

using enum SocketFailure::Outcome;

constexpr char PortUnreachable[] = "Socket error : remote peer returned a \"Port Unreachable\" ICMP packet.";
constexpr char NoSocket[] = "Socket error : Operation attempted on a non-socket object.";

constexpr Row Rows[] = {
    {SocketError::AddressNotAvailable, Passing, nullptr, "Message not sent : address not available."},
    {SocketError::ConnectionReset, Passing, PortUnreachable, PortUnreachable},
    {SocketError::Interrupted, Closed, "The socket has been closed : ending worker.",
     "Message not sent : socket interrupted"},
    {SocketError::Shutdown, Closed, "The socket has been shut down : ending worker.",
     "Message not sent : socket shut down"},
    {SocketError::NotSocket, Lost, NoSocket, NoSocket},
};

SocketFailure Find(const SocketError& error, const char* Row::*text)
{
    const Row* const row = std::ranges::find(Rows, std::int32_t{error}, &Row::Error);
    if (row == std::end(Rows) || row->*text == nullptr)
    {
        return {nullptr, Lost};
    }
    return {row->*text, row->Result};
}
} // namespace

SocketFailure SocketFailure::OfReceive(const SocketError& error)
{
    return Find(error, &Row::Receiving);
}

SocketFailure SocketFailure::OfSend(const SocketError& error)
{
    return Find(error, &Row::Sending);
}

void SocketFailure::Write(const ComponentLog& log, const SocketException& exception) const
{
    if (Text == nullptr)
    {
        log.Write("Unexpected socket error  : " + exception.GetSocketError().ToString() + " !", exception);
    }
    else
    {
        log.Write(Text, exception);
    }
}
} // namespace Zent::Discovery
