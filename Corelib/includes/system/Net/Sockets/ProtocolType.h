#pragma once

#include "system/Enum.h"

namespace Nfx::System::Net::Sockets
{
/// The protocol that a socket speaks.
class ProtocolType final : public Enum<ProtocolType>
{
public:
    enum : std::int32_t
    {
        Unknown = -1,
        IP = 0,
        Icmp = 1,
        Igmp = 2,
        Ggp = 3,
        IPv4 = 4,
        Tcp = 6,
        Pup = 12,
        Udp = 17,
        Idp = 22,
        IPv6 = 41,
        IPv6RoutingHeader = 43,
        IPv6FragmentHeader = 44,
        IPSecEncapsulatingSecurityPayload = 50,
        IPSecAuthenticationHeader = 51,
        IcmpV6 = 58,
        IPv6NoNextHeader = 59,
        IPv6DestinationOptions = 60,
        ND = 77,
        Raw = 255,
        Ipx = 1000,
        Spx = 1256,
        SpxII = 1257
    };

    static constexpr EnumName Names[] = {{Unknown, "Unknown"},
                                         {IP, "IP"},
                                         {Icmp, "Icmp"},
                                         {Igmp, "Igmp"},
                                         {Ggp, "Ggp"},
                                         {IPv4, "IPv4"},
                                         {Tcp, "Tcp"},
                                         {Pup, "Pup"},
                                         {Udp, "Udp"},
                                         {Idp, "Idp"},
                                         {IPv6, "IPv6"},
                                         {IPv6RoutingHeader, "IPv6RoutingHeader"},
                                         {IPv6FragmentHeader, "IPv6FragmentHeader"},
                                         {IPSecEncapsulatingSecurityPayload, "IPSecEncapsulatingSecurityPayload"},
                                         {IPSecAuthenticationHeader, "IPSecAuthenticationHeader"},
                                         {IcmpV6, "IcmpV6"},
                                         {IPv6NoNextHeader, "IPv6NoNextHeader"},
                                         {IPv6DestinationOptions, "IPv6DestinationOptions"},
                                         {ND, "ND"},
                                         {Raw, "Raw"},
                                         {Ipx, "Ipx"},
                                         {Spx, "Spx"},
                                         {SpxII, "SpxII"}};

    using Enum::Enum;
};
} // namespace Nfx::System::Net::Sockets
