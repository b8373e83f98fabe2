#include "Inventory/Journal.h"

#include "Json/JSONObject.h"
#include "JsonText.h"
#include "MemberText.h"
#include "StandardErrors.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

using Nfx::System::String;
using Zent::Utils::Json::JSONObject;

namespace Zent::Discovery::Inventory
{
namespace
{
std::optional<std::string> Settings(const JSONObject& object, const char* key)
{
    JSONObject settings;
    if (!object.TryGetJSONObject(key, settings))
    {
        return std::nullopt;
    }
    return std::string(settings.ToString().View());
}

/// The members that the entry's line has; an end has a line of its own.
JsonText Members(const JournalEntry& entry)
{
    JsonText json;
    json.Text("Time", entry.Time).Text("MACAddress", entry.MACAddress);
    if (!entry.IPAddress.empty())
    {
        json.Text("IPAddress", entry.IPAddress);
    }
    if (entry.Before)
    {
        json.Raw("Before", *entry.Before);
    }
    json.Raw("After", entry.After);
    if (!entry.Undoes.empty())
    {
        json.Text("Undoes", entry.Undoes);
    }
    if (!entry.Exchange.empty())
    {
        json.Text("Exchange", entry.Exchange);
    }
    return json;
}

std::size_t SizeOf(const JournalEntry& entry)
{
    return Journal::BeginLine(entry).size() + 1 +
           (entry.Verdict.empty() ? 0 : Journal::EndLine(entry, entry.Verdict).size() + 1);
}

const JournalEntry* Newest(const std::deque<JournalEntry>& entries, std::string_view macAddress)
{
    const auto newest = std::find_if(entries.rbegin(), entries.rend(), [macAddress](const JournalEntry& entry) {
        return entry.CanBeUndone() && (macAddress.empty() || entry.MACAddress == macAddress);
    });
    return newest == entries.rend() ? nullptr : &*newest;
}

/// Whether the device has, or will have after a reboot, what was sent.
bool HasComeTrue(std::string_view verdict)
{
    return verdict == "applied" || verdict == "reboot-needed";
}
} // namespace

JournalEntry JournalEntry::Of(const ChangeReport& report, std::string time)
{
    const ChangeRequest& request = report.Request;
    const bool isByAddress = request.Kind == ChangeRequest::ChangeKind::RenameAt;
    return {.Time = std::move(time),
            .MACAddress = report.MACAddress(),
            .IPAddress = isByAddress ? request.Interface.IPAddress : "",
            .Before = report.Before ? std::optional(request.SettingsOf(*report.Before)) : std::nullopt,
            .After = request.Settings()};
}

std::string JournalEntry::Id() const
{
    return Time + "/" + Subject();
}

bool JournalEntry::CanBeUndone() const
{
    return Before && Undoes.empty() && !IsUndone && Verdict != "refused" && Verdict != "not-sent";
}

const char* JournalEntry::StateName() const
{
    return IsUndone ? "undone" : IsOpen() ? "open" : "done";
}

std::string JournalEntry::RequestFor(const std::string& settings) const
{
    const std::string members = settings.substr(1); // behind the brace
    return '{' + JsonText::Quoted(IPAddress.empty() ? "MACAddress" : "IPAddress") + ':' + JsonText::Quoted(Subject()) +
           (members == "}" ? "" : ",") + members;
}

std::string JournalEntry::TextOf(const std::string& settings) const
{
    try
    {
        return ChangeRequest::Parse(RequestFor(settings)).ToString();
    }
    catch (const std::invalid_argument&) // somebody has edited the journal
    {
        return settings;
    }
}

std::string JournalEntry::ToJson() const
{
    JsonText json = Members(*this);
    if (!Verdict.empty())
    {
        json.Text("Verdict", Verdict);
    }
    return json.Text("State", StateName()).Text("Id", Id()).Take();
}

std::string Journal::BeginLine(const JournalEntry& entry)
{
    return Members(entry).Take();
}

std::string Journal::EndLine(const JournalEntry& entry, std::string_view verdict)
{
    return JsonText().Text("Ended", entry.Id()).Text("Verdict", verdict).Take();
}

void Journal::Feed(std::string_view line)
{
    if (line.find_first_not_of(" \t\r") == std::string_view::npos)
    {
        return;
    }
    const JSONObject object = WithStandardErrors([line] { return JSONObject(String(line)); });
    if (std::string ended = MemberText(object, "Ended"); !ended.empty())
    {
        End(ended, MemberText(object, "Verdict"));
        return;
    }
    JournalEntry entry{.Time = MemberText(object, "Time"),
                       .MACAddress = MemberText(object, "MACAddress"),
                       .IPAddress = MemberText(object, "IPAddress"),
                       .Before = Settings(object, "Before"),
                       .After = Settings(object, "After").value_or(""),
                       .Undoes = MemberText(object, "Undoes"),
                       .Exchange = MemberText(object, "Exchange")};
    if (entry.Time.empty() || entry.After.empty())
    {
        throw std::invalid_argument("the line tells neither a change nor the end of one");
    }
    Begin(std::move(entry));
}

std::vector<const JournalEntry*> Journal::NewestToUndo(std::string_view macAddress) const
{
    const JournalEntry* const newest = Newest(entries, macAddress);
    std::vector<const JournalEntry*> found;
    if (newest != nullptr && newest->Exchange.empty())
    {
        found.push_back(newest);
    }
    else if (newest != nullptr)
    {
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
        {
            if (entry->CanBeUndone() && entry->Exchange == newest->Exchange)
            {
                found.push_back(&*entry);
            }
        }
    }
    return found;
}

std::string Journal::ToJson() const
{
    std::string text;
    for (const JournalEntry& entry : entries)
    {
        text += (text.empty() ? "[" : ",") + entry.ToJson();
    }
    return text.empty() ? "[]" : text + "]";
}

std::string Journal::NewestToJson(std::string_view macAddress) const
{
    const JournalEntry* const newest = Newest(entries, macAddress);
    return newest == nullptr
               ? "null"
               : JsonText().Raw("Entry", newest->ToJson()).Raw("Request", newest->UndoingRequest()).Take();
}

std::vector<const JournalEntry*> Journal::OpenEntries() const
{
    std::vector<const JournalEntry*> open;
    for (const JournalEntry& entry : entries)
    {
        if (entry.IsOpen())
        {
            open.push_back(&entry);
        }
    }
    return open;
}

std::vector<std::string> Journal::Lines() const
{
    std::vector<std::string> lines;
    for (const JournalEntry& entry : entries)
    {
        lines.push_back(BeginLine(entry));
        if (!entry.Verdict.empty())
        {
            lines.push_back(EndLine(entry, entry.Verdict));
        }
    }
    return lines;
}

void Journal::Begin(JournalEntry entry)
{
    bytes += SizeOf(entry);
    entries.push_back(std::move(entry));
    while (bytes > MaximumBytes && entries.size() > 1)
    {
        DropOldest();
    }
}

void Journal::End(std::string_view id, std::string verdict)
{
    // Two consoles may send at the same moment; one that was broken off may end later.
    const auto found = std::ranges::find_if(
        entries, [id](const JournalEntry& each) { return each.Verdict.empty() && each.Id() == id; });
    JournalEntry* const entry = found == entries.end() ? Find(id) : &*found;
    if (entry == nullptr || verdict.empty())
    {
        return;
    }
    bytes -= SizeOf(*entry);
    entry->Verdict = std::move(verdict);
    bytes += SizeOf(*entry);
    JournalEntry* const undone = Find(entry->Undoes);
    if (undone == nullptr || !HasComeTrue(entry->Verdict))
    {
        return;
    }
    undone->IsUndone = true;
    for (JournalEntry& attempt : entries)
    {
        // One that broke off is of no interest any more.
        attempt.IsUndone = attempt.IsUndone || (attempt.IsOpen() && attempt.Undoes == entry->Undoes);
    }
}

JournalEntry* Journal::Find(std::string_view id)
{
    const auto found =
        std::find_if(entries.rbegin(), entries.rend(), [id](const JournalEntry& entry) { return entry.Id() == id; });
    return found == entries.rend() ? nullptr : &*found;
}

void Journal::DropOldest()
{
    const auto last = entries.end() - 1;
    auto oldest = std::find_if(entries.begin(), last, [](const JournalEntry& entry) { return !entry.IsOpen(); });
    if (oldest == last)
    {
        oldest = entries.begin();
    }
    bytes -= SizeOf(*oldest);
    entries.erase(oldest);
}
} // namespace Zent::Discovery::Inventory
