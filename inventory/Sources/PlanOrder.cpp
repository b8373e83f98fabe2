#include "PlanOrder.h"

#include <utility>

namespace Zent::Discovery::Inventory
{
PlanOrder::PlanOrder(ChangeRefusal::RefusalCode taken, FindTemporary findTemporary)
    : taken(taken)
    , findTemporary(std::move(findTemporary))
{
}

void PlanOrder::AddHolder(const std::string& value, const std::string& holder)
{
    holders[value].insert(holder);
}

void PlanOrder::Add(Move move)
{
    const std::string holder = move.Holder;
    wished.push_back(&items.try_emplace(holder, Item{std::move(move)}).first->second);
}

void PlanOrder::Plan(SitePlan& plan)
{
    for (Item* const item : wished)
    {
        Place(*item, plan);
    }
}

/// False when the change cannot be.
bool PlanOrder::Place(Item& item, SitePlan& plan)
{
    if (item.State == MoveState::Waiting)
    {
        item.State = MoveState::UnderWay;
        if (const std::optional<std::string> obstacle = Clear(item, plan))
        {
            item.State = MoveState::Impossible;
            plan.Obstacles.push_back({item.What.Request, {taken, item.What.Place + ": " + *obstacle}});
            return false;
        }
        item.State = MoveState::Planned;
        Release(item.For.value_or(item.What.Now), item.What.Holder);
        AddHolder(item.What.Wanted, item.What.Holder);
        plan.Steps.push_back({item.What.Request});
        for (std::size_t i = item.Aside; item.For && i < plan.Steps.size(); ++i)
        {
            plan.Steps[i].Exchange = item.Aside + 1;
        }
    }
    return item.State == MoveState::Planned;
}

/// Lets those who have the wanted value go before. What keeps them from it, if anything does.
std::optional<std::string> PlanOrder::Clear(Item& item, SitePlan& plan)
{
    const std::string& value = item.What.Wanted;
    if (value == item.What.Now)
    {
        return std::nullopt;
    }
    for (const std::string& holder : std::set(holders[value])) // which changes meanwhile
    {
        const bool isStillThere = holder != item.What.Holder && holders[value].contains(holder);
        if (const auto reason = isStillThere ? MakeWay(holder, value, plan) : std::nullopt)
        {
            // NOLINTNEXTLINE(performance-inefficient-string-concatenation): once, for it ends the loop
            return '"' + value + "\" is what " + holder + " has, " + *reason;
        }
    }
    return std::nullopt;
}

/// What keeps the holder from giving the value up, if anything does.
std::optional<std::string> PlanOrder::MakeWay(const std::string& holder, const std::string& value, SitePlan& plan)
{
    const auto found = items.find(holder);
    if (found == items.end() || found->second.What.Wanted == value)
    {
        return "and keeps";
    }
    Item& item = found->second;
    if (item.State == MoveState::UnderWay) // and waits for this value itself, through one or more others
    {
        return StepAside(item, plan)
                   ? std::nullopt
                   : std::optional<std::string>("in exchange, and nothing is free for the time between");
    }
    return Place(item, plan) ? std::nullopt : std::optional<std::string>("and cannot give up");
}

bool PlanOrder::StepAside(Item& item, SitePlan& plan)
{
    const auto isFree = [this](const std::string& value) {
        const auto found = holders.find(value);
        return found == holders.end() || found->second.empty();
    };
    std::optional<Temporary> temporary = findTemporary(item.What, isFree);
    if (temporary)
    {
        Release(item.What.Now, item.What.Holder);
        AddHolder(temporary->Value, item.What.Holder);
        item.For = temporary->Value;
        item.Aside = plan.Steps.size();
        plan.Steps.push_back({std::move(temporary->Request), true});
    }
    return temporary.has_value();
}

void PlanOrder::Release(const std::string& value, const std::string& holder)
{
    holders[value].erase(holder);
}
} // namespace Zent::Discovery::Inventory
