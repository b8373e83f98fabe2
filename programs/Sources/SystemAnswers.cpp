#include "Programs/SystemAnswers.h"

#include "Programs/InterfaceChoice.h"
#include "Programs/SystemNetwork.h"
#include "Programs/UdpSockets.h"

#include <algorithm>
#include <system_error>

using Zent::Discovery::Inventory::Network;
using Zent::Discovery::Inventory::Session;
using Zent::Discovery::Inventory::Time;
using Zent::Discovery::Inventory::Wish;

namespace Zent::Discovery::Programs
{
namespace
{
constexpr Time LookInterval{5000};

std::vector<Network> UsualNetworks()
{
    return InterfaceChoice(SystemNetwork::Interfaces(), {}).Addresses();
}
} // namespace

bool SystemAnswers::Answer(Session& session, const Wish& wish)
{
    if (wish.Kind == Wish::WishKind::IsReachable)
    {
        const std::optional<Inventory::IPv4> address = Network::ParseAddress(wish.Address);
        session.Answer(wish.Id, address && SystemNetwork::HasRoute(*address) ? 1 : 0);
        return true;
    }
    if (wish.Kind == Wish::WishKind::CountLost)
    {
        const std::optional<std::uint64_t> drops = UdpSockets::OwnDrops(UdpSockets::HostPort);
        session.Answer(wish.Id, drops ? static_cast<std::int64_t>(*drops) : Wish::Unknown);
        return true;
    }
    return false;
}

std::vector<Network> SystemAnswers::Networks()
{
    try
    {
        return UsualNetworks();
    }
    catch (const std::system_error&)
    {
        return {};
    }
}

void SystemAnswers::TellOfPort(Session& session, Time now)
{
    if (now < nextLook)
    {
        return;
    }
    nextLook = now + LookInterval;
    const std::vector<UdpSocket> sockets = UdpSockets::OnPort(UdpSockets::HostPort);
    session.SetPortHeld(!std::ranges::all_of(sockets, &UdpSocket::IsOwn), now);
}

void SystemAnswers::TellOfPortAndNetworks(Session& session, Time now)
{
    if (now < nextLook)
    {
        return;
    }
    TellOfPort(session, now);
    try
    {
        const bool hasNetworks = !UsualNetworks().empty();
        hadNetworks = hadNetworks || hasNetworks;
        session.SetOffline(hadNetworks && !hasNetworks, now);
    }
    catch (const std::system_error&)
    {
        // The system does not tell: what was told last still holds.
    }
}
} // namespace Zent::Discovery::Programs
