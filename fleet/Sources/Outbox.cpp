#include "Fleet/Outbox.h"

#include <utility>

namespace Zent::Discovery::Fleet
{
void Outbox::Put(const std::string& id, std::string revision, std::string text)
{
    unwanted.erase(id);
    wanted.insert_or_assign(id, Wanted{std::move(revision), std::move(text)});
    Look(id);
}

void Outbox::Remove(const std::string& id)
{
    wanted.erase(id);
    unwanted.insert(id);
    Look(id);
}

void Outbox::Synchronize(Manifest::Revisions revisions)
{
    there = std::move(revisions);
    underWay.clear();
    waiting.clear();
    for (const auto& [id, record] : wanted)
    {
        Look(id);
    }
    for (const std::string& id : std::set<std::string>(unwanted))
    {
        Look(id);
    }
}

std::optional<Outbox::Record> Outbox::Next()
{
    if (waiting.empty() || underWay.size() >= Window)
    {
        return std::nullopt;
    }
    const std::string id = waiting.extract(waiting.begin()).value();
    const auto found = wanted.find(id);
    if (found == wanted.end())
    {
        underWay.emplace(id, "");
        return Record{id, ""};
    }
    underWay.emplace(id, found->second.Revision);
    return Record{id, found->second.Text};
}

void Outbox::Settle(const std::string& id)
{
    const auto found = underWay.find(id);
    if (found == underWay.end())
    {
        return;
    }
    if (found->second.empty())
    {
        there.erase(id);
    }
    else
    {
        there.insert_or_assign(id, found->second);
    }
    underWay.erase(found);
    Look(id); // it may have become another one meanwhile
}

void Outbox::GiveUp(const std::string& id)
{
    underWay.erase(id);
}

std::vector<std::string> Outbox::Unclaimed() const
{
    std::vector<std::string> ids;
    for (const auto& [id, revision] : there)
    {
        if (!wanted.contains(id) && !unwanted.contains(id))
        {
            ids.push_back(id);
        }
    }
    return ids;
}

bool Outbox::IsThere(const std::string& id) const
{
    const auto record = wanted.find(id);
    const auto acknowledged = there.find(id);
    return record == wanted.end() ? acknowledged == there.end()
                                  : acknowledged != there.end() && acknowledged->second == record->second.Revision;
}

/// Lets the record of a device wait, unless the broker has what it should have. One that is under way is looked at
/// again when it has arrived: two of one device could overtake each other.
void Outbox::Look(const std::string& id)
{
    if (underWay.contains(id))
    {
        return;
    }
    if (!IsThere(id))
    {
        waiting.insert(id);
        return;
    }
    waiting.erase(id);
    unwanted.erase(id);
}
} // namespace Zent::Discovery::Fleet
