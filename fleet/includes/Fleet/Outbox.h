#pragma once

#include "Fleet/Manifest.h"

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Zent::Discovery::Fleet
{
/// The records of a site on their way to a broker. What waits is found by comparing what should be there with what is:
/// one record of each device at most, and the newest. One thread at a time.
class Outbox final
{
public:
    /// So many may be under way at once.
    static constexpr std::size_t Window = 64;

    struct Record
    {
        std::string Id;
        std::string Text; // empty when the record is to be removed
    };

    /// What is to be there from now on.
    void Put(const std::string& id, std::string revision, std::string text);

    /// Nothing is to be there from now on.
    void Remove(const std::string& id);

    /// What the broker has, by its manifest or as far as nobody knows; nothing is under way any more. A record that
    /// nobody has put stays where it is until somebody removes it.
    void Synchronize(Manifest::Revisions there);

    /// The next record to send, which is under way then; nothing when none waits or the window is full.
    std::optional<Record> Next();

    /// The broker has taken the record of this device that Next gave.
    void Settle(const std::string& id);

    /// The broker has refused it, and would again: nothing waits until it becomes another one, or the broker another.
    void GiveUp(const std::string& id);

    /// Of records that wait or are under way.
    std::size_t Waiting() const { return waiting.size() + underWay.size(); }

    /// What the broker has said that it has: what the manifest may tell.
    const Manifest::Revisions& There() const { return there; }

    /// The devices with a record on the broker that nobody has put, as those that this program has not met yet.
    std::vector<std::string> Unclaimed() const;

private:
    struct Wanted
    {
        std::string Revision;
        std::string Text;
    };

    bool IsThere(const std::string& id) const;
    void Look(const std::string& id);

    std::map<std::string, Wanted> wanted;
    std::set<std::string> unwanted;              // removed, and perhaps still there
    Manifest::Revisions there;                   // acknowledged
    std::map<std::string, std::string> underWay; // the revisions; empty ones for removals
    std::set<std::string> waiting;
};
} // namespace Zent::Discovery::Fleet
