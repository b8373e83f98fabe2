#pragma once

#include "system/Object.h"

#include <cstddef>
#include <map>
#include <utility>

namespace Nfx::System::Collections::Generic
{
/// Maps keys to values and enumerates them in key order. Not locked.
template <class K, class V>
class SortedDictionary final : public Object
{
public:
    std::size_t Count() const noexcept { return entries.size(); }

    /// Adds an entry; false, and nothing changes, when the key is there already.
    bool TryAdd(K key, V value) { return entries.try_emplace(std::move(key), std::move(value)).second; }

    /// Null when there is no such key.
    const V* Find(const K& key) const
    {
        const auto entry = entries.find(key);
        return entry == entries.end() ? nullptr : &entry->second;
    }

    bool Remove(const K& key) { return entries.erase(key) != 0; }

    /// Calls action(key, value) for each entry in key order.
    template <class TAction>
    void ForEach(TAction&& action) const
    {
        for (const auto& [key, value] : entries)
        {
            action(key, value);
        }
    }

private:
    std::map<K, V> entries;
};
} // namespace Nfx::System::Collections::Generic
