#pragma once

#include "Discovery/ComponentLog.h"
#include "system/Net/Sockets/SocketException.h"

namespace Zent::Discovery
{
/// How a thread that uses the server's socket takes the socket's failure. Any thread.
struct SocketFailure final
{
    enum class Outcome
    {
        Passing, // the socket still serves
        Closed,  // somebody has closed it
        Lost     // it is of no use any more, for whatever reason
    };

    const char* Text; // the line of the log; null for an error that nobody expects, whose line names it
    Outcome Result;

    static SocketFailure OfReceive(const Nfx::System::Net::Sockets::SocketError& error);
    static SocketFailure OfSend(const Nfx::System::Net::Sockets::SocketError& error);

    void Write(const ComponentLog& log, const Nfx::System::Net::Sockets::SocketException& exception) const;
};
} // namespace Zent::Discovery
