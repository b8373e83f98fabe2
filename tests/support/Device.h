#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace Tests
{
/// A device on this machine. One thread at a time sends, one receives.
class Device final
{
public:
    /// Listens on the port; 0 for one that only sends.
    /// @throws std::runtime_error when the port is taken.
    explicit Device(std::int32_t port = 12000);
    ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    /// Sends a datagram to the server's port. It is lost when there is no room on its way.
    void Send(const std::string& text);

    /// Waits for a request in which this text occurs; others are passed over.
    bool Hears(std::string_view text, std::chrono::milliseconds deadline = std::chrono::seconds(10));

    /// Answers every request at once, to where it came from, until it is over.
    void AnswerUntil(const std::atomic<bool>& isOver, const std::string& answer);

    /// True when the server's port can be bound by a socket that shares it with nobody.
    static bool IsServerPortFree();

private:
    const std::intptr_t handle;
};
} // namespace Tests
