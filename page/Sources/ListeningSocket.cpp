#include "ListeningSocket.h"

#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdexcept>
#include <string>
#include <system_error>
#include <unistd.h>

namespace Zent::Discovery::Page
{
namespace
{
constexpr int MaximumWaiting = 64;

/// What the system keeps for a viewer who takes nothing; without a limit it is some megabytes.
constexpr int SendBufferBytes = 64 * 1024;

/// Milliseconds after which a viewer who acknowledges or takes nothing counts as gone.
constexpr int LongestSilence = 60000;

bool Set(int socket, int level, int option, int value)
{
    return setsockopt(socket, level, option, &value, sizeof(value)) == 0;
}
} // namespace

ListeningSocket::ListeningSocket(const InternetAddress& address)
    : descriptor(socket(address.Get()->sa_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
{
    const bool isOpen = descriptor >= 0 && Set(descriptor, SOL_SOCKET, SO_REUSEADDR, 1) &&
                        Set(descriptor, SOL_SOCKET, SO_SNDBUF, SendBufferBytes) &&
                        Set(descriptor, IPPROTO_TCP, TCP_USER_TIMEOUT, LongestSilence) &&
                        bind(descriptor, address.Get(), address.Size()) == 0 && listen(descriptor, MaximumWaiting) == 0;
    if (!isOpen)
    {
        const std::string reason = std::generic_category().message(errno);
        close(descriptor);
        throw std::runtime_error("cannot serve the page on " + address.Text() + ", port " +
                                 std::to_string(address.Port()) + ": " + reason);
    }
}

ListeningSocket::~ListeningSocket()
{
    close(descriptor);
}

std::optional<ListeningSocket::Viewer> ListeningSocket::Accept(bool& isExhausted) const
{
    Viewer viewer = {};
    socklen_t size = sizeof(sockaddr_storage);
    viewer.Socket = accept4(descriptor, viewer.Address.Get(), &size, SOCK_CLOEXEC | SOCK_NONBLOCK);
    isExhausted = viewer.Socket < 0 && (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM);
    if (viewer.Socket < 0)
    {
        return std::nullopt;
    }
    Set(viewer.Socket, IPPROTO_TCP, TCP_NODELAY, 1); // events are small, and do not wait for more
    return viewer;
}
} // namespace Zent::Discovery::Page
