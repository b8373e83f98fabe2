#include "Programs/SystemNetwork.h"

// clang-format off
#include <winsock2.h>
#include <windows.h>
#include <iphlpapi.h>
// clang-format on

#include <cstdint>
#include <system_error>

namespace Zent::Discovery::Programs
{
namespace
{
/// The system's sockets in use, until the process ends.
void PrepareSockets()
{
    static const int result = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data);
    }();
    static_cast<void>(result);
}

std::string Utf8(const wchar_t* text)
{
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr); // the NUL counts
    if (size <= 0)
    {
        return "";
    }
    std::string result(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), size, nullptr, nullptr);
    result.pop_back();
    return result;
}

NetworkInterface InterfaceOf(const IP_ADAPTER_ADDRESSES& adapter)
{
    NetworkInterface result;
    result.Name = Utf8(adapter.FriendlyName);
    result.IsUp = adapter.OperStatus == IfOperStatusUp;
    result.IsLoopback = adapter.IfType == IF_TYPE_SOFTWARE_LOOPBACK;
    result.IsPointToPoint = adapter.IfType == IF_TYPE_PPP || adapter.IfType == IF_TYPE_TUNNEL;
    result.CanBroadcast = !result.IsLoopback && !result.IsPointToPoint;
    for (const IP_ADAPTER_UNICAST_ADDRESS* each = adapter.FirstUnicastAddress; each != nullptr; each = each->Next)
    {
        if (each->Address.lpSockaddr->sa_family == AF_INET)
        {
            const auto* const address = reinterpret_cast<const sockaddr_in*>(each->Address.lpSockaddr);
            result.Addresses.push_back(
                {static_cast<Inventory::IPv4>(ntohl(address->sin_addr.s_addr)), each->OnLinkPrefixLength});
        }
    }
    return result;
}
} // namespace

std::vector<NetworkInterface> SystemNetwork::Interfaces()
{
    constexpr ULONG Flags = GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST | GAA_FLAG_SKIP_DNS_SERVER;
    ULONG size = 16 * 1024;
    using Unit = std::uint64_t; // the structures want no stricter alignment
    std::vector<Unit> buffer;
    ULONG result = ERROR_BUFFER_OVERFLOW;
    while (result == ERROR_BUFFER_OVERFLOW) // interfaces may be added meanwhile
    {
        buffer.resize(size / sizeof(Unit) + 1);
        result = GetAdaptersAddresses(AF_INET, Flags, nullptr, reinterpret_cast<IP_ADAPTER_ADDRESSES*>(buffer.data()),
                                      &size);
    }
    std::vector<NetworkInterface> interfaces;
    if (result == ERROR_NO_DATA)
    {
        return interfaces;
    }
    if (result != ERROR_SUCCESS)
    {
        throw std::system_error(static_cast<int>(result), std::system_category(), "cannot list the network interfaces");
    }
    for (const auto* adapter = reinterpret_cast<const IP_ADAPTER_ADDRESSES*>(buffer.data()); adapter != nullptr;
         adapter = adapter->Next)
    {
        interfaces.push_back(InterfaceOf(*adapter));
    }
    return interfaces;
}

bool SystemNetwork::HasRoute(Inventory::IPv4 address)
{
    PrepareSockets();
    const SOCKET probe = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in target{};
    target.sin_family = AF_INET;
    target.sin_port = htons(9); // any
    target.sin_addr.s_addr = htonl(address);
    const bool result = connect(probe, reinterpret_cast<const sockaddr*>(&target), sizeof(target)) == 0;
    closesocket(probe);
    return result;
}

class NetworkChanges::System final
{
public:
    System() { request.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr); }

    System(const System&) = delete;
    System& operator=(const System&) = delete;

    ~System()
    {
        CancelIPChangeNotify(&request);
        CloseHandle(request.hEvent);
        CloseHandle(stopped);
    }

    bool Wait(std::chrono::milliseconds time)
    {
        // Each notification must be asked for anew; where the system knows none, waits last as long as they may.
        isPending = isPending || IsAskedFor();
        const HANDLE events[] = {stopped, request.hEvent};
        const DWORD count = isPending ? 2 : 1;
        const DWORD result = WaitForMultipleObjects(count, events, FALSE, static_cast<DWORD>(time.count()));
        isPending = isPending && result != WAIT_OBJECT_0 + 1;
        return result != WAIT_OBJECT_0;
    }

    void Stop() { SetEvent(stopped); }

private:
    bool IsAskedFor()
    {
        HANDLE ignored = nullptr;
        ResetEvent(request.hEvent);
        return NotifyAddrChange(&ignored, &request) == ERROR_IO_PENDING;
    }

    const HANDLE stopped = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    OVERLAPPED request{};
    bool isPending = false;
};

NetworkChanges::NetworkChanges()
    : system(std::make_unique<System>())
{
}

NetworkChanges::~NetworkChanges() = default;

bool NetworkChanges::Wait(std::chrono::milliseconds time)
{
    return system->Wait(time);
}

void NetworkChanges::Stop()
{
    system->Stop();
}
} // namespace Zent::Discovery::Programs
