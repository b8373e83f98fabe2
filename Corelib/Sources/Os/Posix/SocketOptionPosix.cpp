#include "Os/Posix/SocketOptionPosix.h"

#include "system/Net/Sockets/SocketOptionLevel.h"
#include "system/Net/Sockets/SocketOptionName.h"

#include <cerrno>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>

namespace Nfx::Os
{
namespace
{
using Nfx::System::Net::Sockets::SocketOptionLevel;
using Nfx::System::Net::Sockets::SocketOptionName;

struct Row
{
    std::int32_t Level;
    std::int32_t Name;
    int PlatformLevel;
    int PlatformName;
    bool (*Set)(int descriptor, int level, int name, std::int32_t value) noexcept;
};

template <class TValue>
bool SetValue(int descriptor, int level, int name, const TValue& value) noexcept
{
    return ::setsockopt(descriptor, level, name, &value, sizeof value) == 0;
}

bool SetNumber(int descriptor, int level, int name, std::int32_t value) noexcept
{
    return SetValue(descriptor, level, name, int{value});
}

bool SetOpposite(int descriptor, int level, int name, std::int32_t value) noexcept
{
    return SetValue(descriptor, level, name, value == 0 ? 1 : 0);
}

constexpr std::int32_t MillisecondsPerSecond = 1000;
constexpr suseconds_t MicrosecondsPerMillisecond = 1000;

/// In milliseconds; 0 waits without limit on both platforms.
bool SetTimeout(int descriptor, int level, int name, std::int32_t value) noexcept
{
    const std::int32_t milliseconds = value < 0 ? 0 : value;
    timeval time = {};
    time.tv_sec = milliseconds / MillisecondsPerSecond;
    time.tv_usec = milliseconds % MillisecondsPerSecond * MicrosecondsPerMillisecond;
    return SetValue(descriptor, level, name, time);
}

constexpr std::int32_t HeartBeatMilliseconds = SocketOptionPosix::HeartBeatMilliseconds;

// The system rounds timeouts up to a tick of its clock, which takes no longer than this. A caller's timeout must not
// end up as the heart beat.
constexpr std::int32_t LongestTickMilliseconds = 10;

bool SetReceiveTimeout(int descriptor, int level, int name, std::int32_t value) noexcept
{
    if (value <= 0)
    {
        return SetTimeout(descriptor, level, name, HeartBeatMilliseconds);
    }
    const bool isLikeHeartBeat =
        value <= HeartBeatMilliseconds && value > HeartBeatMilliseconds - LongestTickMilliseconds;
    return SetTimeout(descriptor, level, name,
                      isLikeHeartBeat ? HeartBeatMilliseconds + LongestTickMilliseconds : value);
}

bool SetDontFragment(int descriptor, int level, int name, std::int32_t value) noexcept
{
    return SetValue(descriptor, level, name, value == 0 ? IP_PMTUDISC_DONT : IP_PMTUDISC_DO);
}

// Missing are the options of streams, and those that take a structure: there is no operation to pass one.
constexpr Row Rows[] = {
    {SocketOptionLevel::Socket, SocketOptionName::Debug, SOL_SOCKET, SO_DEBUG, SetNumber},
    {SocketOptionLevel::Socket, SocketOptionName::ReuseAddress, SOL_SOCKET, SO_REUSEADDR, SetNumber},
    {SocketOptionLevel::Socket, SocketOptionName::ExclusiveAddressUse, SOL_SOCKET, SO_REUSEADDR, SetOpposite},
    {SocketOptionLevel::Socket, SocketOptionName::DontRoute, SOL_SOCKET, SO_DONTROUTE, SetNumber},
    {SocketOptionLevel::Socket, SocketOptionName::Broadcast, SOL_SOCKET, SO_BROADCAST, SetNumber},
    {SocketOptionLevel::Socket, SocketOptionName::SendBuffer, SOL_SOCKET, SO_SNDBUF, SetNumber},
    {SocketOptionLevel::Socket, SocketOptionName::ReceiveBuffer, SOL_SOCKET, SO_RCVBUF, SetNumber},
    {SocketOptionLevel::Socket, SocketOptionName::ReceiveLowWater, SOL_SOCKET, SO_RCVLOWAT, SetNumber},
    {SocketOptionLevel::Socket, SocketOptionName::SendTimeout, SOL_SOCKET, SO_SNDTIMEO, SetTimeout},
    {SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, SOL_SOCKET, SO_RCVTIMEO, SetReceiveTimeout},
    {SocketOptionLevel::IP, SocketOptionName::HeaderIncluded, IPPROTO_IP, IP_HDRINCL, SetNumber},
    {SocketOptionLevel::IP, SocketOptionName::TypeOfService, IPPROTO_IP, IP_TOS, SetNumber},
    {SocketOptionLevel::IP, SocketOptionName::IpTimeToLive, IPPROTO_IP, IP_TTL, SetNumber},
    {SocketOptionLevel::IP, SocketOptionName::MulticastTimeToLive, IPPROTO_IP, IP_MULTICAST_TTL, SetNumber},
    {SocketOptionLevel::IP, SocketOptionName::MulticastLoopback, IPPROTO_IP, IP_MULTICAST_LOOP, SetNumber},
    {SocketOptionLevel::IP, SocketOptionName::DontFragment, IPPROTO_IP, IP_MTU_DISCOVER, SetDontFragment},
    {SocketOptionLevel::IP, SocketOptionName::PacketInformation, IPPROTO_IP, IP_PKTINFO, SetNumber},
    {SocketOptionLevel::Udp, SocketOptionName::NoChecksum, SOL_SOCKET, SO_NO_CHECK, SetNumber},
};
} // namespace

bool SocketOptionPosix::Set(int descriptor, std::int32_t level, std::int32_t name, std::int32_t value) noexcept
{
    for (const Row& row : Rows)
    {
        if (row.Level == level && row.Name == name)
        {
            return row.Set(descriptor, row.PlatformLevel, row.PlatformName, value);
        }
    }
    errno = ENOPROTOOPT;
    return false;
}

bool SocketOptionPosix::HasTimeout(int descriptor, int option) noexcept
{
    timeval time = {};
    socklen_t size = sizeof time;
    if (::getsockopt(descriptor, SOL_SOCKET, option, &time, &size) != 0 || (time.tv_sec == 0 && time.tv_usec == 0))
    {
        return false;
    }
    const bool isHeartBeat = time.tv_sec == 0 && time.tv_usec == HeartBeatMilliseconds * MicrosecondsPerMillisecond;
    return option != SO_RCVTIMEO || !isHeartBeat;
}
} // namespace Nfx::Os
