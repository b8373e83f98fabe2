#include "Programs/UdpSockets.h"

// clang-format off
#include <winsock2.h>
#include <ws2tcpip.h>
#include <iphlpapi.h>
#include <windows.h>
// clang-format on

#include <memory>
#include <string_view>

namespace Zent::Discovery::Programs
{
namespace
{
/// Winsock in use.
class Winsock final
{
public:
    Winsock()
        : started(WSAStartup(MAKEWORD(2, 2), &data) == 0)
    {
    }

    ~Winsock()
    {
        if (started)
        {
            WSACleanup();
        }
    }

    Winsock(const Winsock&) = delete;
    Winsock& operator=(const Winsock&) = delete;

private:
    WSADATA data{};
    const bool started;
};

/// The file name of the program that the process runs; empty when the system refuses.
std::string ProgramOf(DWORD process)
{
    const std::unique_ptr<void, decltype(&CloseHandle)> handle(
        OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, process), &CloseHandle);
    char path[MAX_PATH];
    DWORD size = MAX_PATH;
    if (handle == nullptr || !QueryFullProcessImageNameA(handle.get(), 0, path, &size))
    {
        return "";
    }
    const std::string_view name(path, size);
    return std::string(name.substr(name.find_last_of('\\') + 1));
}
} // namespace

std::vector<UdpSocket> UdpSockets::OnPort(std::uint16_t port)
{
    DWORD size = 0;
    std::vector<std::uint64_t> memory; // aligned for any table
    DWORD error = ERROR_INSUFFICIENT_BUFFER;
    while (error == ERROR_INSUFFICIENT_BUFFER) // the table may grow meanwhile
    {
        memory.resize(size / sizeof(std::uint64_t) + 1);
        size = static_cast<DWORD>(memory.size() * sizeof(std::uint64_t));
        error = GetExtendedUdpTable(memory.data(), &size, FALSE, AF_INET, UDP_TABLE_OWNER_PID, 0);
    }
    std::vector<UdpSocket> sockets;
    if (error != NO_ERROR)
    {
        return sockets;
    }
    const auto& table = *reinterpret_cast<const MIB_UDPTABLE_OWNER_PID*>(memory.data());
    for (DWORD i = 0; i < table.dwNumEntries; ++i)
    {
        const MIB_UDPROW_OWNER_PID& row = table.table[i];
        if (ntohs(static_cast<u_short>(row.dwLocalPort)) == port)
        {
            UdpSocket& socket = sockets.emplace_back();
            if (row.dwOwningPid != 0) // of no process that the system knows
            {
                socket.Process = row.dwOwningPid;
                socket.Program = ProgramOf(row.dwOwningPid);
                socket.IsOwn = row.dwOwningPid == GetCurrentProcessId();
            }
        }
    }
    return sockets;
}

bool UdpSockets::CanShare(std::uint16_t port)
{
    const Winsock winsock;
    const SOCKET probe = socket(AF_INET, SOCK_DGRAM, 0);
    if (probe == INVALID_SOCKET)
    {
        return true; // what is wrong then is not the port
    }
    const int reuse = 1;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    const bool isFree =
        setsockopt(probe, SOL_SOCKET, SO_REUSEADDR, reinterpret_cast<const char*>(&reuse), sizeof(reuse)) == 0 &&
        bind(probe, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    closesocket(probe);
    return isFree;
}
} // namespace Zent::Discovery::Programs
