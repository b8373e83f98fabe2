#include "Programs/SessionDriver.h"

#include "Programs/HostSession.h"
#include "Programs/MessageQueue.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Inventory::Time;
using Zent::Discovery::Inventory::Wish;

namespace Zent::Discovery::Programs
{
SessionDriver::SessionDriver(HostSession& host,
                             MessageQueue& messages,
                             const Inventory::DeviceTableOptions& options,
                             Complain complain,
                             Watcher watcher)
    : host(host)
    , messages(messages)
    , complain(std::move(complain))
    , watcher(std::move(watcher))
    , session(options)
{
}

Time SessionDriver::Now() const
{
    return std::chrono::duration_cast<Time>(std::chrono::steady_clock::now() - start);
}

bool SessionDriver::Run(std::chrono::milliseconds longest)
{
    systemAnswers.TellOfPort(session, Now());
    session.SetOffline(host.Interfaces().Addresses().empty(), Now());
    session.Advance(Now());
    while (const std::optional<Wish> wish = session.NextWish())
    {
        CarryOut(*wish);
    }
    const Time now = Now();
    const Time next = std::clamp(session.NextTime(), now, now + std::max(longest, Time(0)));
    for (DeviceMessage& message : messages.Take(start + next))
    {
        Feed(std::move(message));
    }
    ComplainAboutLoss();
    return !messages.IsInterrupted();
}

void SessionDriver::Feed(DeviceMessage message)
{
    try
    {
        if (watcher)
        {
            watcher(message);
        }
        session.Feed(std::move(message), Now());
    }
    catch (const std::invalid_argument& exception)
    {
        ++unreadable;
        complain("unreadable message left out: " + std::string(exception.what()));
    }
}

bool SessionDriver::AskAll()
{
    return CarryOut({Wish::WishKind::AskAll, 0});
}

bool SessionDriver::Ask(const std::string& macAddress)
{
    return CarryOut({Wish::WishKind::AskMAC, 0, macAddress});
}

bool SessionDriver::Reach(const std::string& ipAddress)
{
    return CarryOut({Wish::WishKind::AskIP, 0, ipAddress});
}

/// False when the library takes no requests, as while it restarts itself. What was not sent now is sent later.
bool SessionDriver::CarryOut(const Wish& wish)
{
    if (wish.IsRequestOfChange() && onRequest)
    {
        onRequest(wish.Change);
    }
    const bool isCarriedOut = TryToCarryOut(wish);
    if (wish.IsRequestOfChange())
    {
        session.Answer(wish.Id, isCarriedOut ? 1 : 0);
    }
    return isCarriedOut;
}

bool SessionDriver::TryToCarryOut(const Wish& wish)
{
    try
    {
        switch (wish.Kind)
        {
        case Wish::WishKind::AskAll:
            host.Requests().Discover();
            lastRound = Now();
            break;
        case Wish::WishKind::AskMAC:
            host.Requests().RefreshClient(wish.Address);
            break;
        case Wish::WishKind::AskIP:
            host.Requests().ReachClient(wish.Address);
            break;
        case Wish::WishKind::Rename:
            host.Requests().ChangeClientsHostName(wish.Text, wish.Address);
            break;
        case Wish::WishKind::RenameAt:
            host.Requests().ChangeClientsHostNameWithIP(wish.Text, wish.Address);
            break;
        case Wish::WishKind::Configure:
            host.Requests().ChangeClientsIPConfigurationsFromJson(wish.Text);
            break;
        case Wish::WishKind::IsReachable:
        case Wish::WishKind::CountLost:
            SystemAnswers::Answer(session, wish);
            break;
        }
        return true;
    }
    catch (const DiscoveryError& error)
    {
        if (error.Code() != DiscoveryError::NullPointer)
        {
            throw;
        }
        return false;
    }
}

void SessionDriver::ComplainAboutLoss()
{
    const std::size_t loss = messages.Lost();
    if (loss != knownLoss)
    {
        complain(std::to_string(loss - knownLoss) + " messages lost: they come faster than they can be shown");
        knownLoss = loss;
    }
}
} // namespace Zent::Discovery::Programs
