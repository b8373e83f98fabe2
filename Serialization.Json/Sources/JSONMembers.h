#pragma once

#include <string_view>
#include <vector>

struct cJSON;

namespace Zent::Utils::Json
{
/// The different keys of one object, each with the member that a look-up by it finds.
class JSONMembers final
{
public:
    struct Member
    {
        const cJSON* Item;
        std::string_view Key;
        const cJSON* Match; // the first member whose key equals this one's ignoring case
    };

    /// The first member whose key matches ignoring ASCII case; null when there is none.
    static const cJSON* Find(const cJSON* object, std::string_view key) noexcept;

    /// The work grows as n log n, whatever the keys are. Null counts as an empty object.
    explicit JSONMembers(const cJSON* object);

    /// Calls action(member) for each of Different. Objects of few members, as most are, cost no allocation.
    template <class TAction>
    static void ForEachDifferent(const cJSON* object, TAction&& action)
    {
        if (!HasMany(object))
        {
            for (Member member = First(object); member.Item != nullptr; member = After(object, member))
            {
                action(member);
            }
            return;
        }
        const JSONMembers members(object);
        for (const Member& member : members.Different())
        {
            action(member);
        }
    }

    /// In document order, without the exact repetitions of earlier keys.
    const std::vector<Member>& Different() const noexcept { return members; }

private:
    static bool HasMany(const cJSON* object) noexcept;

    // By comparing each with all before it. Without an item when there is none.
    static Member First(const cJSON* object) noexcept;
    static Member After(const cJSON* object, const Member& member) noexcept;
    static Member DifferentFrom(const cJSON* object, const cJSON* item) noexcept;

    std::vector<Member> members;
};
} // namespace Zent::Utils::Json
