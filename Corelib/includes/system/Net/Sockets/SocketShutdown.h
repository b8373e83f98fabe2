#pragma once

#include "system/Enum.h"

namespace Nfx::System::Net::Sockets
{
/// The directions of a socket that a shutdown ends.
class SocketShutdown final : public Enum<SocketShutdown>
{
public:
    enum : std::int32_t
    {
        Receive = 0,
        Send = 1,
        Both = 2
    };

    static constexpr EnumName Names[] = {{Receive, "Receive"}, {Send, "Send"}, {Both, "Both"}};

    using Enum::Enum;
};
} // namespace Nfx::System::Net::Sockets
