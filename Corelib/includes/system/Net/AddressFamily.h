#pragma once

#include "system/Enum.h"

namespace Nfx::System::Net
{
/// The kind of network an address belongs to; the values are Winsock's on every platform.
class AddressFamily final : public Enum<AddressFamily>
{
public:
    enum : std::int32_t
    {
        Unknown = -1,
        Unspecified = 0,
        Unix = 1,
        InterNetwork = 2,
        ImpLink = 3,
        Pup = 4,
        Chaos = 5,
        Ipx = 6,
        Iso = 7,
        Ecma = 8,
        DataKit = 9,
        Ccitt = 10,
        Sna = 11,
        DecNet = 12,
        DataLink = 13,
        Lat = 14,
        HyperChannel = 15,
        AppleTalk = 16,
        NetBios = 17,
        VoiceView = 18,
        FireFox = 19,
        Banyan = 21,
        Atm = 22,
        InterNetworkV6 = 23,
        Cluster = 24,
        Ieee12844 = 25,
        Irda = 26,
        NetworkDesigners = 28,
        Max = 29
    };

    static constexpr EnumName Names[] = {{Unknown, "Unknown"},
                                         {Unspecified, "Unspecified"},
                                         {Unix, "Unix"},
                                         {InterNetwork, "InterNetwork"},
                                         {ImpLink, "ImpLink"},
                                         {Pup, "Pup"},
                                         {Chaos, "Chaos"},
                                         {Ipx, "Ipx"},
                                         {Iso, "Iso"},
                                         {Ecma, "Ecma"},
                                         {DataKit, "DataKit"},
                                         {Ccitt, "Ccitt"},
                                         {Sna, "Sna"},
                                         {DecNet, "DecNet"},
                                         {DataLink, "DataLink"},
                                         {Lat, "Lat"},
                                         {HyperChannel, "HyperChannel"},
                                         {AppleTalk, "AppleTalk"},
                                         {NetBios, "NetBios"},
                                         {VoiceView, "VoiceView"},
                                         {FireFox, "FireFox"},
                                         {Banyan, "Banyan"},
                                         {Atm, "Atm"},
                                         {InterNetworkV6, "InterNetworkV6"},
                                         {Cluster, "Cluster"},
                                         {Ieee12844, "Ieee12844"},
                                         {Irda, "Irda"},
                                         {NetworkDesigners, "NetworkDesigners"},
                                         {Max, "Max"}};

    using Enum::Enum;
};
} // namespace Nfx::System::Net
