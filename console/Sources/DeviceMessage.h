#pragma once

#include <chrono>
#include <string>

namespace Zent::Discovery::Console
{
/// What the library reported: a message from a device, as the library's JSON document.
struct DeviceMessage
{
    enum class MessageKind
    {
        Signature,
        Hello,
        Bye
    };

    /// Of the wall, which unlike a steady clock goes on while the computer sleeps.
    using Clock = std::chrono::system_clock;

    MessageKind Kind;
    std::string Document;
    Clock::time_point Received = Clock::now();

    const char* KindName() const
    {
        switch (Kind)
        {
        case MessageKind::Hello:
            return "Hello";
        case MessageKind::Bye:
            return "Bye";
        default:
            return "Signature";
        }
    }
};
} // namespace Zent::Discovery::Console
