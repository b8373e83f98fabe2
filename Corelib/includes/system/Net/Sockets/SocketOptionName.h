#pragma once

#include "system/Enum.h"

namespace Nfx::System::Net::Sockets
{
/// The options of a socket. A value is unique within its SocketOptionLevel only; the values are Winsock's on every
/// platform.
class SocketOptionName final : public Enum<SocketOptionName>
{
public:
    enum : std::int32_t
    {
        // Socket level
        Debug = 1,
        AcceptConnection = 2,
        ReuseAddress = 4,
        KeepAlive = 8,
        DontRoute = 16,
        Broadcast = 32,
        UseLoopback = 64,
        Linger = 128,
        OutOfBandInline = 256,
        DontLinger = -129,
        ExclusiveAddressUse = -5,
        SendBuffer = 4097,
        ReceiveBuffer = 4098,
        SendLowWater = 4099,
        ReceiveLowWater = 4100,
        SendTimeout = 4101,
        ReceiveTimeout = 4102,
        Error = 4103,
        Type = 4104,
        MaxConnections = 2147483647,

        // IP level
        IPOptions = 1,
        HeaderIncluded = 2,
        TypeOfService = 3,
        IpTimeToLive = 4,
        MulticastInterface = 9,
        MulticastTimeToLive = 10,
        MulticastLoopback = 11,
        AddMembership = 12,
        DropMembership = 13,
        DontFragment = 14,
        AddSourceMembership = 15,
        DropSourceMembership = 16,
        BlockSource = 17,
        UnblockSource = 18,
        PacketInformation = 19,
        HopLimit = 21,
        IPProtectionLevel = 22,
        IPv6Only = 23,

        // TCP level
        NoDelay = 1,
        BsdUrgent = 2,
        Expedited = 2,

        // UDP level
        NoChecksum = 1,
        ChecksumCoverage = 20,

        // Socket level, after an accept or connect of Winsock's own
        UpdateAcceptContext = 28683,
        UpdateConnectContext = 28688
    };

    // A value shows as the first name it has here: the socket level comes first.
    static constexpr EnumName Names[] = {{Debug, "Debug"},
                                         {AcceptConnection, "AcceptConnection"},
                                         {ReuseAddress, "ReuseAddress"},
                                         {KeepAlive, "KeepAlive"},
                                         {DontRoute, "DontRoute"},
                                         {Broadcast, "Broadcast"},
                                         {UseLoopback, "UseLoopback"},
                                         {Linger, "Linger"},
                                         {OutOfBandInline, "OutOfBandInline"},
                                         {DontLinger, "DontLinger"},
                                         {ExclusiveAddressUse, "ExclusiveAddressUse"},
                                         {SendBuffer, "SendBuffer"},
                                         {ReceiveBuffer, "ReceiveBuffer"},
                                         {SendLowWater, "SendLowWater"},
                                         {ReceiveLowWater, "ReceiveLowWater"},
                                         {SendTimeout, "SendTimeout"},
                                         {ReceiveTimeout, "ReceiveTimeout"},
                                         {Error, "Error"},
                                         {Type, "Type"},
                                         {MaxConnections, "MaxConnections"},
                                         {IPOptions, "IPOptions"},
                                         {HeaderIncluded, "HeaderIncluded"},
                                         {TypeOfService, "TypeOfService"},
                                         {IpTimeToLive, "IpTimeToLive"},
                                         {MulticastInterface, "MulticastInterface"},
                                         {MulticastTimeToLive, "MulticastTimeToLive"},
                                         {MulticastLoopback, "MulticastLoopback"},
                                         {AddMembership, "AddMembership"},
                                         {DropMembership, "DropMembership"},
                                         {DontFragment, "DontFragment"},
                                         {AddSourceMembership, "AddSourceMembership"},
                                         {DropSourceMembership, "DropSourceMembership"},
                                         {BlockSource, "BlockSource"},
                                         {UnblockSource, "UnblockSource"},
                                         {PacketInformation, "PacketInformation"},
                                         {HopLimit, "HopLimit"},
                                         {IPProtectionLevel, "IPProtectionLevel"},
                                         {IPv6Only, "IPv6Only"},
                                         {NoDelay, "NoDelay"},
                                         {BsdUrgent, "BsdUrgent"},
                                         {Expedited, "Expedited"},
                                         {NoChecksum, "NoChecksum"},
                                         {ChecksumCoverage, "ChecksumCoverage"},
                                         {UpdateAcceptContext, "UpdateAcceptContext"},
                                         {UpdateConnectContext, "UpdateConnectContext"}};

    using Enum::Enum;
};
} // namespace Nfx::System::Net::Sockets
