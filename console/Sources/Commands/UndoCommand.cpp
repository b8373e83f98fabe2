#include "Commands/UndoCommand.h"

#include "Commands/Arguments.h"
#include "Commands/ChangeRun.h"
#include "Commands/CommandContext.h"
#include "Inventory/AddressText.h"
#include "Show/Output.h"
#include "Text/TerminalText.h"
#include "Text/TextTable.h"

#include <vector>

using Zent::Discovery::Inventory::AddressText;
using Zent::Discovery::Inventory::ChangeRequest;
using Zent::Discovery::Inventory::Journal;
using Zent::Discovery::Inventory::JournalEntry;

namespace Zent::Discovery::Console
{
CLI::App& UndoCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "undo",
                        "take back the newest change that is not yet taken back, and see that the device takes it");
    ChangeSettings::AddMAC(arguments, macAddress, "the newest change of the interface with this MAC address");
    const Arguments::Argument list =
        arguments.AddFlag("--list", lists, "list the changes that the journal knows, the oldest first");
    arguments.AddFlag("--keep", keeps, "leave changes as they are that were broken off, and speak of them no more")
        .Excludes(list);
    settings.AddTo(arguments);
    return arguments.Command();
}

ExitStatus UndoCommand::Run(CommandContext& context)
{
    const Journal journal = context.ReadJournal();
    if (lists)
    {
        List(context, journal);
        return ExitStatus::Success;
    }
    if (keeps)
    {
        return Keep(context, journal);
    }
    std::vector<ChangeRun::Wanted> plan;
    for (const JournalEntry* const entry : journal.NewestToUndo(AddressText::MAC(macAddress)))
    {
        plan.push_back({ChangeRequest::Parse(entry->UndoingRequest()), entry->Id()});
    }
    if (plan.empty())
    {
        context.Out().Complain("the journal " + context.Options().Journal + " has no change" +
                               (macAddress.empty() ? "" : " of " + AddressText::MAC(macAddress)) + " to undo");
        return ExitStatus::Usage;
    }
    if (!context.CanBroadcast())
    {
        return ExitStatus::NoAnswer;
    }
    return ChangeRun(context, settings)
        .CarryOut(plan, {.OneByOne = plan.size() > 1, .Asks = true, .NeedsAnswer = true});
}

void UndoCommand::List(CommandContext& context, const Journal& journal)
{
    Output& output = context.Out();
    TextTable table({{"TIME"}, {"ADDRESS"}, {"VERDICT"}, {"STATE"}, {"BEFORE"}, {"AFTER"}});
    for (const JournalEntry& entry : journal.Entries())
    {
        if (output.IsJson())
        {
            output.PrintLine(TerminalText::Json(entry.ToJson()));
        }
        table.AddRow(
            {entry.Time, entry.Subject(), entry.Verdict, entry.StateName(), entry.BeforeText(), entry.AfterText()});
    }
    if (!output.IsJson())
    {
        output.Show(table);
    }
}

ExitStatus UndoCommand::Keep(CommandContext& context, const Journal& journal)
{
    for (const JournalEntry* entry : journal.OpenEntries())
    {
        context.WriteJournal(Journal::EndLine(*entry, "kept"));
    }
    return ExitStatus::Success;
}
} // namespace Zent::Discovery::Console
