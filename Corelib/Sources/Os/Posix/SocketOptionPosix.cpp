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

constexpr std::int32_t MillisecondsPerSecond = 1000;
constexpr suseconds_t MicrosecondsPerMillisecond = 1000;

constexpr std::int32_t HeartBeatMilliseconds = SocketOptionPosix::HeartBeatMilliseconds;

// The system rounds timeouts up to a tick of its clock, which takes no longer than this. A caller's timeout must not
// end up as the heart beat.
constexpr std::int32_t LongestTickMilliseconds = 10;

bool SetReceiveTimeout(int descriptor, int level, int name, std::int32_t value) noexcept
{
    const bool isLikeHeartBeat =
        value <= HeartBeatMilliseconds && value > HeartBeatMilliseconds - LongestTickMilliseconds;
    const std::int32_t milliseconds = value <= 0        ? HeartBeatMilliseconds
                                      : isLikeHeartBeat ? HeartBeatMilliseconds + LongestTickMilliseconds
                                                        : value;
    timeval time = {};
    time.tv_sec = milliseconds / MillisecondsPerSecond;
    time.tv_usec = milliseconds % MillisecondsPerSecond * MicrosecondsPerMillisecond;
    return SetValue(descriptor, level, name, time);
}

// The options that programs of this framework use.
constexpr Row Rows[] = {
    {SocketOptionLevel::Socket, SocketOptionName::ReuseAddress, SOL_SOCKET, SO_REUSEADDR, SetNumber},
    {SocketOptionLevel::Socket, SocketOptionName::Broadcast, SOL_SOCKET, SO_BROADCAST, SetNumber},
    {SocketOptionLevel::Socket, SocketOptionName::ReceiveBuffer, SOL_SOCKET, SO_RCVBUF, SetNumber},
    {SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, SOL_SOCKET, SO_RCVTIMEO, SetReceiveTimeout},
    {SocketOptionLevel::IP, SocketOptionName::PacketInformation, IPPROTO_IP, IP_PKTINFO, SetNumber},
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

bool SocketOptionPosix::HasReceiveTimeout(int descriptor) noexcept
{
    timeval time = {};
    socklen_t size = sizeof time;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &time, &size) == 0 &&
           (time.tv_sec != 0 ||
            (time.tv_usec != 0 && time.tv_usec != HeartBeatMilliseconds * MicrosecondsPerMillisecond));
}
} // namespace Nfx::Os
