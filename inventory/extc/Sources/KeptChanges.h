#pragma once

#include "Inventory/Journal.h"
#include "Inventory/Session.h"
#include "Programs/JournalFile.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace Zent::Discovery::Inventory
{
/// Keeps the changes of a session in a journal's file, which other programs may keep at the same time. One thread at a
/// time.
class KeptChanges final
{
public:
    /// @throws std::runtime_error that names the file when it is there and cannot be read.
    explicit KeptChanges(std::string path);

    /// Says that a change takes back what the journal's entry with that Id tells of.
    void SetUndoes(std::int64_t change, std::string entry);

    /// Before the request of a change is sent, also again. False when the file cannot be written; then the change has
    /// ended.
    bool Begin(std::int64_t change, Session& session);

    /// Gives the Id of its entry; empty when it was not kept. An end that cannot be written leaves the entry open.
    std::string End(const ChangeReport& outcome);

    /// {"Entries":[..],"Newest":{"Entry":{..},"Request":{..}},"Broken":[".."]}: the newest is the one to be undone, of
    /// the interface with that MAC address or, without one, of any; null when there is none. Broken lines are left out.
    /// @throws std::runtime_error that names the file when it cannot be read.
    std::string ToJson(std::string_view macAddress) const;

private:
    const Programs::JournalFile file;
    std::map<std::int64_t, std::string> undoes;
    std::map<std::int64_t, JournalEntry> open; // by the ids of the changes
};
} // namespace Zent::Discovery::Inventory
