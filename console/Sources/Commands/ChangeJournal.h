#pragma once

#include "Inventory/ChangeReport.h"
#include "Inventory/Journal.h"

#include <string>

namespace Zent::Discovery::Console
{
class CommandContext;

/// Keeps changes in the user's journal.
class ChangeJournal final
{
public:
    ChangeJournal() = delete;

    /// Of a change that is about to be sent. undoes is the Id of the entry that it takes back, if any.
    /// @throws std::runtime_error when the journal that the user has chosen cannot be written.
    static Inventory::JournalEntry Begin(const Inventory::ChangeReport& report,
                                         const std::string& undoes,
                                         CommandContext& context);
};
} // namespace Zent::Discovery::Console
