#include "Os/Win32/SocketW32.h"

#include "Os/Win32/PlatformW32.h"

#include <atomic>

namespace Nfx::Os
{
namespace
{
SOCKET Socket(ISocket::Handle handle) noexcept
{
    return static_cast<SOCKET>(handle);
}

const sockaddr* Address(const std::uint8_t* address) noexcept
{
    return reinterpret_cast<const sockaddr*>(address);
}

std::int32_t Result(int result) noexcept
{
    return result != SOCKET_ERROR ? ISocket::Success : std::int32_t{WSAGetLastError()};
}

/// Starts Winsock unless it runs. Threads that come first together may each start it: it counts, and is never stopped.
std::int32_t Start() noexcept
{
    static std::atomic<bool> started{false};
    if (started.load(std::memory_order_acquire))
    {
        return ISocket::Success;
    }
    WSADATA data = {};
    const int error = WSAStartup(MAKEWORD(2, 2), &data);
    started.store(error == 0, std::memory_order_release);
    return error;
}

SOCKET OpenUninherited(int type, int protocol) noexcept
{
    const SOCKET socket =
        WSASocketW(AF_INET, type, protocol, nullptr, 0, WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
    if (socket != INVALID_SOCKET || WSAGetLastError() != WSAEINVAL)
    {
        return socket;
    }
    // Windows 7 without its service pack does not know the flag.
    const SOCKET inherited = WSASocketW(AF_INET, type, protocol, nullptr, 0, WSA_FLAG_OVERLAPPED);
    if (inherited != INVALID_SOCKET)
    {
        SetHandleInformation(reinterpret_cast<HANDLE>(inherited), HANDLE_FLAG_INHERIT, 0);
    }
    return inherited;
}

/// Anybody on the network can cause these reports, and they would end a receive with 10052. Where the system refuses,
/// they stay on.
void SwitchNetworkResetReportsOff(SOCKET socket) noexcept
{
    constexpr DWORD NetworkResetReports = _WSAIOW(IOC_VENDOR, 15);
    BOOL on = FALSE;
    DWORD size = 0;
    WSAIoctl(socket, NetworkResetReports, &on, sizeof on, nullptr, 0, &size, nullptr, nullptr);
}

/// Ends what any thread waits for on the socket.
void CancelBlocked(ISocket::Handle handle) noexcept
{
    CancelIoEx(reinterpret_cast<HANDLE>(handle), nullptr);
}
} // namespace

std::int32_t SocketW32::Open(std::int32_t type, std::int32_t protocol, Handle& handle) noexcept
{
    const std::int32_t error = Start();
    if (error != Success)
    {
        return error;
    }
    const SOCKET socket = OpenUninherited(type, protocol);
    if (socket == INVALID_SOCKET)
    {
        return WSAGetLastError();
    }
    SwitchNetworkResetReportsOff(socket);
    handle = static_cast<Handle>(socket);
    return Success;
}

std::int32_t SocketW32::SetOption(Handle handle, std::int32_t level, std::int32_t name, std::int32_t value) noexcept
{
    return Result(setsockopt(Socket(handle), level, name, reinterpret_cast<const char*>(&value), sizeof value));
}

std::int32_t SocketW32::Bind(Handle handle, const std::uint8_t* address) noexcept
{
    return Result(bind(Socket(handle), Address(address), AddressSize));
}

std::int32_t SocketW32::Connect(Handle handle, const std::uint8_t* address) noexcept
{
    return Result(connect(Socket(handle), Address(address), AddressSize));
}

std::int32_t SocketW32::LocalAddress(Handle handle, std::uint8_t* address) noexcept
{
    int addressSize = AddressSize;
    return Result(getsockname(Socket(handle), reinterpret_cast<sockaddr*>(address), &addressSize));
}

std::int32_t SocketW32::SendTo(Handle handle,
                               const std::uint8_t* bytes,
                               std::int32_t count,
                               const std::uint8_t* address,
                               std::int32_t& sent) noexcept
{
    const int result =
        sendto(Socket(handle), reinterpret_cast<const char*>(bytes), count, 0, Address(address), AddressSize);
    if (result != SOCKET_ERROR)
    {
        sent = result;
    }
    return Result(result);
}

std::int32_t SocketW32::ReceiveFrom(
    Handle handle, std::uint8_t* buffer, std::int32_t size, std::uint8_t* address, std::int32_t& received) noexcept
{
    int addressSize = AddressSize;
    const int result = recvfrom(Socket(handle), reinterpret_cast<char*>(buffer), size, 0,
                                reinterpret_cast<sockaddr*>(address), &addressSize);
    if (result != SOCKET_ERROR)
    {
        received = result;
    }
    return Result(result);
}

std::int32_t SocketW32::Available(Handle handle, std::int32_t& size) noexcept
{
    u_long bytes = 0;
    const int result = ioctlsocket(Socket(handle), FIONREAD, &bytes);
    size = static_cast<std::int32_t>(bytes);
    return Result(result);
}

std::int32_t SocketW32::Shutdown(Handle handle, std::int32_t how) noexcept
{
    const std::int32_t error = Result(shutdown(Socket(handle), how));
    if (error == Success && how != SD_SEND)
    {
        CancelBlocked(handle);
    }
    return error;
}

void SocketW32::BeginClose(Handle handle) noexcept
{
    shutdown(Socket(handle), SD_BOTH);
    CancelBlocked(handle);
}

void SocketW32::EndClose(Handle handle) noexcept
{
    closesocket(Socket(handle));
}

bool SocketW32::IsPortUsed(std::int32_t) noexcept
{
    return false; // the table of sockets takes a library that is otherwise not needed
}
} // namespace Nfx::Os
