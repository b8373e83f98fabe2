#pragma once

#include <chrono>
#include <string>

namespace Zent::Discovery::Inventory
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
    using TimePoint = std::chrono::system_clock::time_point;

    MessageKind Kind;
    std::string Document;
    TimePoint Received = {};

    const char* KindName() const
    {
        switch (Kind)
        {
        case MessageKind::Hello:
            return "Hello";
        case MessageKind::Bye:
            return "Bye";
        case MessageKind::Signature:
            break;
        }
        return "Signature";
    }
};
} // namespace Zent::Discovery::Inventory
