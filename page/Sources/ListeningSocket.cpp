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

bool SetFlag(int socket, int level, int option)
{
    const int on = 1;
    return setsockopt(socket, level, option, &on, sizeof(on)) == 0;
}
} // namespace

ListeningSocket::ListeningSocket(const InternetAddress& address)
    : descriptor(socket(address.Get()->sa_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
{
    const bool isOpen = descriptor >= 0 && SetFlag(descriptor, SOL_SOCKET, SO_REUSEADDR) &&
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
    SetFlag(viewer.Socket, IPPROTO_TCP, TCP_NODELAY); // events are small, and do not wait for more
    return viewer;
}
} // namespace Zent::Discovery::Page
