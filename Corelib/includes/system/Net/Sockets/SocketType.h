#pragma once

#include "system/Enum.h"

namespace Nfx::System::Net::Sockets
{
/// How a socket carries data.
class SocketType final : public Enum<SocketType>
{
public:
    enum : std::int32_t
    {
        Unknown = -1,
        Stream = 1,
        Dgram = 2,
        Raw = 3,
        Rdm = 4,
        Seqpacket = 5
    };

    static constexpr EnumName Names[] = {{Unknown, "Unknown"}, {Stream, "Stream"}, {Dgram, "Dgram"},
                                         {Raw, "Raw"},         {Rdm, "Rdm"},       {Seqpacket, "Seqpacket"}};

    using Enum::Enum;
};
} // namespace Nfx::System::Net::Sockets
