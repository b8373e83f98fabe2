#include "endtoend/DevicePort.h"

#include <cstring>
#include <ctime>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace Benchmarks
{
DevicePort::DevicePort()
    : descriptor(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0))
{
    const int on = 1;
    const timeval patience = {2, 0};
    sockaddr_in any{};
    any.sin_family = AF_INET;
    any.sin_port = htons(12000);
    setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    if (setsockopt(descriptor, SOL_SOCKET, SO_TIMESTAMPNS, &on, sizeof on) != 0 ||
        bind(descriptor, reinterpret_cast<const sockaddr*>(&any), sizeof any) != 0)
    {
        throw std::runtime_error("the devices' port cannot be bound");
    }
}

DevicePort::~DevicePort()
{
    close(descriptor);
}

std::int64_t DevicePort::NextArrival() const
{
    char text[2048];
    alignas(cmsghdr) char control[256];
    iovec content = {text, sizeof text};
    msghdr message{};
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const cmsghdr* const stamp = recvmsg(descriptor, &message, 0) < 0 ? nullptr : CMSG_FIRSTHDR(&message);
    if (stamp == nullptr)
    {
        throw std::runtime_error("no request has come");
    }
    timespec time{};
    std::memcpy(&time, CMSG_DATA(stamp), sizeof time);
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}
} // namespace Benchmarks
