#include "ProcessState.h"

// clang-format off
#include <winsock2.h>
#include <windows.h>
#include <psapi.h>
#include <tlhelp32.h>

// clang-format on

namespace Tests
{
namespace
{
bool IsBoundToEveryAddress(SOCKET socket, std::uint16_t port)
{
    sockaddr_in address{};
    int size = sizeof address;
    return getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) == 0 && address.sin_family == AF_INET &&
           address.sin_addr.s_addr == htonl(INADDR_ANY) && address.sin_port == htons(port);
}

std::int64_t RunningThreads()
{
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    std::int64_t count = 0;
    for (BOOL found = Thread32First(snapshot, &entry); found != FALSE; found = Thread32Next(snapshot, &entry))
    {
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    CloseHandle(snapshot);
    return count;
}
} // namespace

ProcessState CurrentState()
{
    DWORD handles = 0;
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return {handles, RunningThreads(), static_cast<std::int64_t>(counters.WorkingSetSize / 1024)};
}

bool ShutDownSocketOn(std::uint16_t port)
{
    constexpr UINT_PTR HighestHandle = 0x10000;
    constexpr UINT_PTR HandleStep = 4;
    bool isDone = false;
    for (UINT_PTR handle = HandleStep; handle < HighestHandle; handle += HandleStep)
    {
        if (IsBoundToEveryAddress(handle, port))
        {
            shutdown(handle, SD_BOTH);
            CancelIoEx(reinterpret_cast<HANDLE>(handle), nullptr); // else the receiver does not notice
            isDone = true;
        }
    }
    return isDone;
}
} // namespace Tests
