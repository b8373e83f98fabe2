#pragma once

#include "Os/ISocket.h"

#include <chrono>
#include <string>
#include <string_view>

namespace Tests
{
/// A device on loopback. Its socket is the platform's own: it never fails and is never counted.
class Device final
{
public:
    Device();
    ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    /// Sends a datagram to the server's port.
    void Send(const std::string& text);

    /// Waits for a request in which this text occurs; others are passed over.
    bool Hears(std::string_view text, std::chrono::milliseconds deadline = std::chrono::seconds(10));

    /// True when the server's port can be bound by a socket that shares it with nobody.
    static bool IsServerPortFree();

private:
    Nfx::Os::ISocket::Handle handle = 0;
};
} // namespace Tests
