#include "Programs/SystemNetwork.h"

#include "Win32/TextW32.h"

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
NetworkInterface InterfaceOf(const IP_ADAPTER_ADDRESSES& adapter)
{
    NetworkInterface result;
    result.Name = TextW32::Utf8(adapter.FriendlyName);
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

/// Asks for notifications, each of which must be asked for anew.
class NetworkChangesW32 final : public NetworkChanges
{
public:
    NetworkChangesW32() { request.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr); }

    ~NetworkChangesW32() override
    {
        CancelIPChangeNotify(&request);
        CloseHandle(request.hEvent);
        CloseHandle(stopped);
    }

    bool Wait(std::chrono::milliseconds time) override
    {
        // Where the system knows none, waits last as long as they may.
        isPending = isPending || IsAskedFor();
        const HANDLE events[] = {stopped, request.hEvent};
        const DWORD count = isPending ? 2 : 1;
        const DWORD result = WaitForMultipleObjects(count, events, FALSE, static_cast<DWORD>(time.count()));
        isPending = isPending && result != WAIT_OBJECT_0 + 1;
        return result != WAIT_OBJECT_0;
    }

    void Stop() override { SetEvent(stopped); }

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

std::unique_ptr<NetworkChanges> NetworkChanges::Create()
{
    return std::make_unique<NetworkChangesW32>();
}
} // namespace Zent::Discovery::Programs
