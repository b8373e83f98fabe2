#pragma once

#include "system/Enum.h"

namespace Nfx::System::Net::Sockets
{
/// The protocol layer that a socket option belongs to; the values are Winsock's on every platform.
class SocketOptionLevel final : public Enum<SocketOptionLevel>
{
public:
    enum : std::int32_t
    {
        Socket = 65535,
        IP = 0,
        IPv6 = 41,
        Tcp = 6,
        Udp = 17
    };

    static constexpr EnumName Names[] = {{Socket, "Socket"}, {IP, "IP"}, {IPv6, "IPv6"}, {Tcp, "Tcp"}, {Udp, "Udp"}};

    using Enum::Enum;
};
} // namespace Nfx::System::Net::Sockets
