#include "JSONMembers.h"

#include <cJSON.h>

#include <algorithm>
#include <cstddef>

namespace Zent::Utils::Json
{
namespace
{
using Member = JSONMembers::Member;
using Position = std::vector<Member*>::iterator;

/// Not the C library's: that one follows the locale of the host process.
unsigned char Fold(char character) noexcept
{
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte + ('a' - 'A')) : byte;
}

bool IsEqualFolded(char left, char right) noexcept
{
    return Fold(left) == Fold(right);
}

/// Most names are told apart by their first letter or their length, and those that match mostly match in case, too.
bool IsKey(const char* name, std::string_view key) noexcept
{
    constexpr int caseBit = 'a' ^ 'A'; // all that two cases of a letter differ in
    if (!key.empty() && ((*name ^ key.front()) & ~caseBit) != 0)
    {
        return false;
    }
    const std::string_view view(name);
    return view == key ||
           (view.size() == key.size() && std::equal(view.begin(), view.end(), key.begin(), IsEqualFolded));
}

const cJSON* FirstMember(const cJSON* object) noexcept
{
    return object == nullptr ? nullptr : object->child;
}

int CompareFolded(std::string_view left, std::string_view right) noexcept
{
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t index = 0; index < common; ++index)
    {
        if (Fold(left[index]) != Fold(right[index]))
        {
            return Fold(left[index]) - Fold(right[index]);
        }
    }
    return static_cast<int>(left.size() > common) - static_cast<int>(right.size() > common);
}

/// By key ignoring case, then by key, then by place in the document.
bool IsBefore(const Member* left, const Member* right) noexcept
{
    const int folded = CompareFolded(left->Key, right->Key);
    const int exact = folded != 0 ? folded : left->Key.compare(right->Key);
    return exact != 0 ? exact < 0 : left < right;
}

/// Sets the match of all members whose keys equal the first one's ignoring case, null for an exact repetition. Returns
/// where the next such group begins.
Position MatchGroup(Position begin, Position end)
{
    const std::string_view key = (*begin)->Key;
    const Position groupEnd =
        std::find_if(begin, end, [key](const Member* member) { return CompareFolded(member->Key, key) != 0; });
    const cJSON* const match = (*std::min_element(begin, groupEnd))->Item;
    const Member* previous = nullptr;
    for (Position position = begin; position != groupEnd; ++position)
    {
        const bool isRepeated = previous != nullptr && previous->Key == (*position)->Key;
        (*position)->Match = isRepeated ? nullptr : match;
        previous = *position;
    }
    return groupEnd;
}
} // namespace

const cJSON* JSONMembers::Find(const cJSON* object, std::string_view key) noexcept
{
    const cJSON* member = FirstMember(object);
    while (member != nullptr && !IsKey(member->string, key))
    {
        member = member->next;
    }
    return member;
}

JSONMembers::JSONMembers(const cJSON* object)
{
    members.reserve(static_cast<std::size_t>(cJSON_GetArraySize(object)));
    for (const cJSON* item = FirstMember(object); item != nullptr; item = item->next)
    {
        members.push_back({item, item->string, item});
    }
    std::vector<Member*> sorted;
    sorted.reserve(members.size());
    for (Member& member : members)
    {
        sorted.push_back(&member);
    }
    std::sort(sorted.begin(), sorted.end(), IsBefore);
    for (Position position = sorted.begin(); position != sorted.end();)
    {
        position = MatchGroup(position, sorted.end());
    }
    std::erase_if(members, [](const Member& member) { return member.Match == nullptr; });
}
} // namespace Zent::Utils::Json
