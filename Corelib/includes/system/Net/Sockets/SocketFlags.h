#pragma once

#include "system/Enum.h"

namespace Nfx::System::Net::Sockets
{
/// How a single send or receive is to behave, or did; bits that may be joined.
class SocketFlags final : public Enum<SocketFlags>
{
public:
    enum : std::int32_t
    {
        None = 0,
        OutOfBand = 1,
        Peek = 2,
        DontRoute = 4,
        MaxIOVectorLength = 16,
        Truncated = 256,
        ControlDataTruncated = 512,
        Broadcast = 1024,
        Multicast = 2048,
        Partial = 32768
    };

    static constexpr EnumName Names[] = {{None, "None"},
                                         {OutOfBand, "OutOfBand"},
                                         {Peek, "Peek"},
                                         {DontRoute, "DontRoute"},
                                         {MaxIOVectorLength, "MaxIOVectorLength"},
                                         {Truncated, "Truncated"},
                                         {ControlDataTruncated, "ControlDataTruncated"},
                                         {Broadcast, "Broadcast"},
                                         {Multicast, "Multicast"},
                                         {Partial, "Partial"}};

    using Enum::Enum;
};
} // namespace Nfx::System::Net::Sockets
