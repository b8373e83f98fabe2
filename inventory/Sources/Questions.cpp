#include "Inventory/Questions.h"

#include "Inventory/Device.h"

#include <algorithm>

namespace Zent::Discovery::Inventory
{
namespace
{
/// A host program that takes no wishes must not find thousands of them later.
constexpr std::size_t MaximumWishes = 100;

/// Within it a few questions fall due: fewer wake-ups than questions.
constexpr Time Pause{5};
} // namespace

bool Questions::CanAsk(Time now)
{
    GiveUp(now);
    return next <= now && unanswered.size() < MaximumUnanswered && wishes.size() < MaximumWishes;
}

bool Questions::CanAskMAC(Time now)
{
    return CanAsk(now);
}

bool Questions::CanAskIP(Time now)
{
    return CanAsk(now) && unansweredByIP < MaximumUnansweredByIP;
}

Time Questions::NextTime(Time now) const
{
    const bool isFull = unanswered.size() >= MaximumUnanswered;
    return std::max(now + Pause, isFull ? inOrder.front().first + AnswerTime : now);
}

void Questions::AskAll()
{
    WaitOnce(Wish::WishKind::AskAll);
}

void Questions::AskMAC(const std::string& address, Time now)
{
    NoteQuestion(address, false, now);
    Wait({Wish::WishKind::AskMAC, 0, address});
}

std::int64_t Questions::AskIP(const std::string& address, Time now)
{
    NoteQuestion(address, true, now);
    return Wait({Wish::WishKind::IsReachable, 0, address});
}

void Questions::CountLost()
{
    WaitOnce(Wish::WishKind::CountLost);
}

std::int64_t Questions::FindRoute(const std::string& address)
{
    const std::int64_t id = Wait({Wish::WishKind::IsReachable, 0, address});
    routesAlone.insert(id);
    return id;
}

std::int64_t Questions::Request(Wish wish)
{
    return Wait(std::move(wish));
}

void Questions::Withdraw(std::int64_t id)
{
    std::erase_if(wishes, [id](const Wish& wish) { return wish.Id == id; });
    open.erase(id);
    routesAlone.erase(id);
}

void Questions::NoteAnswer(const Device& device)
{
    for (const Device::Interface& interface : device.Interfaces())
    {
        Settle(interface.MACAddress);
        Settle(interface.IPAddress);
    }
}

std::optional<Wish> Questions::Next()
{
    if (wishes.empty())
    {
        return std::nullopt;
    }
    Wish wish = std::move(wishes.front());
    wishes.pop_front();
    if (wish.ExpectsAnswer())
    {
        open.emplace(wish.Id, wish);
    }
    return wish;
}

std::optional<Wish> Questions::Answer(std::int64_t id, std::int64_t value)
{
    const auto found = open.find(id);
    if (found == open.end())
    {
        return std::nullopt;
    }
    Wish wish = std::move(found->second);
    open.erase(found);
    if (wish.Kind == Wish::WishKind::IsReachable && routesAlone.erase(id) == 0)
    {
        if (value == 1)
        {
            Wait({Wish::WishKind::AskIP, 0, wish.Address});
        }
        else
        {
            Settle(wish.Address); // nothing is sent
        }
    }
    return wish;
}

std::int64_t Questions::Wait(Wish wish)
{
    wish.Id = ++lastId;
    wishes.push_back(std::move(wish));
    return lastId;
}

/// Leaves it out when the same one has not been taken yet.
void Questions::WaitOnce(Wish::WishKind kind)
{
    if (std::ranges::find(wishes, kind, &Wish::Kind) == wishes.end())
    {
        Wait({kind, 0});
    }
}

void Questions::NoteQuestion(const std::string& address, bool isByIP, Time now)
{
    next = std::max(next, now - MaximumCredit) + Distance;
    const auto [place, isNew] = unanswered.try_emplace(address, Question{now, isByIP});
    unansweredByIP += isNew && isByIP ? 1u : 0u;
    place->second.Asked = now;
    inOrder.emplace_back(now, address);
}

void Questions::Settle(const std::string& address)
{
    const auto found = unanswered.find(address);
    if (found != unanswered.end())
    {
        unansweredByIP -= found->second.IsByIP ? 1u : 0u;
        unanswered.erase(found);
    }
}

/// Forgets questions that nobody will answer any more.
void Questions::GiveUp(Time now)
{
    while (!inOrder.empty() && inOrder.front().first + AnswerTime <= now)
    {
        const auto found = unanswered.find(inOrder.front().second);
        if (found != unanswered.end() && found->second.Asked == inOrder.front().first)
        {
            Settle(found->first);
        }
        inOrder.pop_front();
    }
    if (open.size() > MaximumWishes * 10) // from a host program that never answers
    {
        open.clear();
    }
}
} // namespace Zent::Discovery::Inventory
