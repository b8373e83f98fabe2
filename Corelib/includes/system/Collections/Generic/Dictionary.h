#pragma once

#include "system/Collections/Generic/KeyValuePair.h"
#include "system/Exceptions.h"

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace Nfx::System::Collections::Generic
{
/// Maps keys to values and enumerates them in the order in which they were added. Not locked.
/// Look-ups go through an ordered index: no choice of keys makes them degenerate.
template <class K, class V>
class Dictionary final : public Object
{
public:
    using Entry = KeyValuePair<K, V>;

    std::size_t Count() const noexcept { return entries.size(); }

    /// @throws ArgumentException when the key is there already; nothing changes.
    void Add(K key, V value)
    {
        if (!TryAdd(std::move(key), std::move(value)))
        {
            throw ArgumentException("Corelib/includes/system/Collections/Generic/Dictionary", __LINE__);
        }
    }

    /// False, and nothing changes, when the key is there already.
    bool TryAdd(K key, V value)
    {
        if (index.find(key) != index.end())
        {
            return false;
        }
        entries.emplace_back(key, std::move(value));
        try
        {
            index.try_emplace(std::move(key), entries.size() - 1);
        }
        catch (...) // nobody would find it
        {
            entries.pop_back();
            throw;
        }
        return true;
    }

    /// Null when there is no such key.
    const V* Find(const K& key) const
    {
        const auto position = index.find(key);
        return position == index.end() ? nullptr : &entries[position->second].Value();
    }

    /// Linear in the number of entries: the later ones move up.
    bool Remove(const K& key)
    {
        const auto position = index.find(key);
        if (position == index.end())
        {
            return false;
        }
        const std::size_t removed = position->second;
        index.erase(position);
        entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(removed));
        for (auto& [unused, place] : index)
        {
            if (place > removed)
            {
                --place;
            }
        }
        return true;
    }

    void Clear() noexcept
    {
        index.clear();
        entries.clear();
    }

    /// Calls action(entry) for each entry in the order in which they were added.
    template <class TAction>
    void ForEach(TAction&& action) const
    {
        for (const Entry& entry : entries)
        {
            action(entry);
        }
    }

    auto begin() const noexcept { return entries.begin(); }

    auto end() const noexcept { return entries.end(); }

private:
    using Index = std::map<K, std::size_t>; // key to place in entries

    Index index;
    std::vector<Entry> entries;
};
} // namespace Nfx::System::Collections::Generic
