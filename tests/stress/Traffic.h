#pragma once

#include "system/Net/Sockets/Socket.h"

#include <cstdint>
#include <random>
#include <string>

namespace Tests
{
/// What devices and vandals send to the server on this machine. One thread.
class Traffic
{
public:
    Traffic();

    void Send(const std::string& datagram);

    /// A valid message of a random kind from a host of the name.
    static std::string AnyMessage(std::mt19937& random, const std::string& hostName);

    /// Something that is no message: noise, a message cut off or damaged, deep nesting, much of the same.
    static std::string Hostile(std::mt19937& random);

private:
    Nfx::System::Net::Sockets::Socket socket;
};

/// What listens to requests in a device on this machine. One thread.
class RequestListener
{
public:
    RequestListener();

    /// Whether a request in which the text occurs has come, or comes within some milliseconds.
    bool HasHeard(const std::string& text);

private:
    Nfx::System::Net::Sockets::Socket socket;
};

/// Whether the server's port can be bound without sharing it.
bool IsServerPortFree();
} // namespace Tests
