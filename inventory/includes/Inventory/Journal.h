#pragma once

#include "Inventory/ChangeReport.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// A change of a device as a journal keeps it. Settings are a JSON object: {"HostName":"press-4"}, or what an interface
/// has but for its MAC address.
struct JournalEntry
{
    /// Of a change that is about to be sent.
    static JournalEntry Of(const ChangeReport& report, std::string time);

    std::string Time;                       // when it was sent, as the host program writes times
    std::string MACAddress;                 // of the interface; empty when nobody knew it
    std::string IPAddress = {};             // where the device was told, if not by its MAC address
    std::optional<std::string> Before = {}; // settings; nothing when nobody knew them
    std::string After = {};                 // settings that were sent
    std::string Undoes = {};                // the Id of the change that this one takes back; empty as a rule
    std::string Exchange = {};              // the Id of the first of those that exchange names or addresses with this
    std::string Verdict = {};               // empty while it is open
    bool IsUndone = false;                  // by a later entry

    /// Tells entries of one journal apart.
    std::string Id() const;

    /// Whether nobody knows what has come of it: the program that sent it ended before it could tell.
    bool IsOpen() const { return Verdict.empty() && !IsUndone; }

    /// The address by which the device is told.
    const std::string& Subject() const { return IPAddress.empty() ? MACAddress : IPAddress; }

    /// Whether it is there to be taken back: it may have come true, and what was before is known.
    bool CanBeUndone() const;

    /// open, done or undone.
    const char* StateName() const;

    /// The request that takes it back: {"MACAddress":"..", or "IPAddress", and the settings of Before}.
    /// Only with a Before.
    std::string UndoingRequest() const { return RequestFor(*Before); }

    /// Settings for people: the name "press-4"; empty when they are not known.
    std::string BeforeText() const { return Before ? TextOf(*Before) : ""; }

    std::string AfterText() const { return TextOf(After); }

    /// {"Time":"..","MACAddress":"..","IPAddress":"..","Before":{..},"After":{..},"Undoes":"..","Exchange":"..",
    /// "Verdict":"..","State":"done","Id":".."}; what is not known is left out.
    std::string ToJson() const;

private:
    std::string RequestFor(const std::string& settings) const;
    std::string TextOf(const std::string& settings) const;
};

/// Remembers changes of devices, so that they can be taken back. A journal is a text of lines, which its host program
/// keeps: it appends BeginLine before a change is sent, EndLine once the change is verified, and feeds the lines to a
/// journal when it wants to know. One thread at a time.
class Journal final
{
public:
    /// More than this, in bytes of lines, is not kept: the oldest changes go first, open ones last.
    static constexpr std::size_t MaximumBytes = std::size_t{512} * 1024;

    /// Lines are JSON objects without a line end.
    static std::string BeginLine(const JournalEntry& entry);
    static std::string EndLine(const JournalEntry& entry, std::string_view verdict);

    /// Takes the next line; an empty one is left out, and so is the end of a change that is no longer kept.
    /// @throws std::invalid_argument with the reason when it is no line of a journal; nothing has changed.
    void Feed(std::string_view line);

    /// The oldest first. Valid until the next Feed.
    const std::deque<JournalEntry>& Entries() const { return entries; }

    /// The newest change that can be undone, of the interface with that MAC address in the library's form or of any,
    /// and what else can be undone of its exchange, the newest first; empty when there is none. Valid until the next
    /// Feed.
    std::vector<const JournalEntry*> NewestToUndo(std::string_view macAddress = {}) const;

    /// [{..},{..}]: all entries, the oldest first.
    std::string ToJson() const;

    /// {"Entry":{..},"Request":{..}}: the newest change that can be undone, of that interface or of any, and the
    /// request that does so; or null. Of an exchange it is a single step.
    std::string NewestToJson(std::string_view macAddress) const;

    /// Those of which nobody knows what has come, the oldest first. Valid until the next Feed.
    std::vector<const JournalEntry*> OpenEntries() const;

    /// All that is kept, line by line: what a file that has grown too large is to hold.
    std::vector<std::string> Lines() const;

private:
    void Begin(JournalEntry entry);
    void End(std::string_view id, std::string verdict);
    JournalEntry* Find(std::string_view id);
    void DropOldest();

    std::deque<JournalEntry> entries;
    std::size_t bytes = 0; // of their lines
};
} // namespace Zent::Discovery::Inventory
