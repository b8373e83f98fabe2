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

    /// In document order, without the exact repetitions of earlier keys.
    const std::vector<Member>& Different() const noexcept { return members; }

private:
    std::vector<Member> members;
};
} // namespace Zent::Utils::Json
