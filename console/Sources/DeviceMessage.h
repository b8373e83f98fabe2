#pragma once

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

    MessageKind Kind;
    std::string Document;

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
