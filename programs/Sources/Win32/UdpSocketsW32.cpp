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
} // namespace Zent::Discovery::Programs
