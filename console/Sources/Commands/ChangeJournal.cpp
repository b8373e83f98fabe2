#include "Commands/ChangeJournal.h"

#include "Commands/CommandContext.h"
#include "Text/TimeText.h"

#include <chrono>

using Zent::Discovery::Inventory::ChangeReport;
using Zent::Discovery::Inventory::ChangeRequest;
using Zent::Discovery::Inventory::Journal;
using Zent::Discovery::Inventory::JournalEntry;

namespace Zent::Discovery::Console
{
JournalEntry ChangeJournal::Begin(const ChangeReport& report, const std::string& undoes, CommandContext& context)
{
    const ChangeRequest& request = report.Request;
    const bool isByAddress = request.Kind == ChangeRequest::ChangeKind::RenameAt;
    JournalEntry entry{.Time = TimeText::Utc(std::chrono::system_clock::now()),
                       .MACAddress = report.MACAddress(),
                       .IPAddress = isByAddress ? request.Interface.IPAddress : "",
                       .Before = report.Before ? std::optional(request.SettingsOf(*report.Before)) : std::nullopt,
                       .After = request.Settings(),
                       .Undoes = undoes};
    context.WriteJournal(Journal::BeginLine(entry));
    return entry;
}
} // namespace Zent::Discovery::Console
