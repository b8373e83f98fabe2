#pragma once

#include "Inventory/SitePlan.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// Puts changes of values that one holder alone may have, such as names, in an order in which nobody takes what
/// somebody else still has.
class PlanOrder final
{
public:
    /// The change of one holder's value.
    struct Move
    {
        ChangeRequest Request;
        std::string Holder;
        std::string Now;        // the value that it gives up
        std::string Wanted;     // the value that it takes; the same when only something else changes
        std::string Place = {}; // of the wish, for messages
    };

    /// A value for a while.
    struct Temporary
    {
        ChangeRequest Request;
        std::string Value;
    };

    using IsFree = std::function<bool(const std::string& value)>;

    /// Finds a value that the holder of the move may have for a while; nothing when there is none.
    using FindTemporary = std::function<std::optional<Temporary>(const Move& move, const IsFree& isFree)>;

    /// taken is the code of a change that cannot be.
    PlanOrder(ChangeRefusal::RefusalCode taken, FindTemporary findTemporary);

    /// Somebody has a value now.
    void AddHolder(const std::string& value, const std::string& holder);

    void Add(Move move);

    /// Adds the steps and what stands in their way.
    void Plan(SitePlan& plan);

private:
    enum class MoveState
    {
        Waiting,
        UnderWay, // those who have to go before it are looked for
        Planned,
        Impossible
    };

    struct Item
    {
        Move What;
        MoveState State = MoveState::Waiting;
        std::optional<std::string> For = {}; // the value that it has for a while
        std::size_t Aside = 0;               // the step that gives it, which begins the exchange
    };

    bool Place(Item& item, SitePlan& plan);
    std::optional<std::string> Clear(Item& item, SitePlan& plan);
    std::optional<std::string> MakeWay(const std::string& holder, const std::string& value, SitePlan& plan);
    bool StepAside(Item& item, SitePlan& plan);
    void Release(const std::string& value, const std::string& holder);

    const ChangeRefusal::RefusalCode taken;
    const FindTemporary findTemporary;
    std::map<std::string, std::set<std::string>> holders; // of each value
    std::map<std::string, Item> items;                    // by their holders
    std::vector<Item*> wished;                            // in the order of the file
};
} // namespace Zent::Discovery::Inventory
