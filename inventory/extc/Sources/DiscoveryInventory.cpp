#include "DiscoveryInventory.h"

#include "Inventory/Journal.h"
#include "Inventory/Session.h"
#include "KeptChanges.h"
#include "OptionsReader.h"
#include "Programs/SystemAnswers.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

using namespace Zent::Discovery::Inventory;
using Zent::Discovery::Programs::SystemAnswers;

/// A session and the texts that its host was given last.
struct DiscoveryInventory
{
    Session Engine;
    std::optional<SystemAnswers> System = {}; // when the host leaves the system to the session
    std::optional<KeptChanges> Kept = {};     // when there is a journal
    std::string Text = {};
    std::optional<Wish> LastWish = {};
};

/// A journal, and the entries of changes that go on, by the ids of these.
struct DiscoveryInventoryJournal
{
    Journal Entries = {};
    std::map<long long, JournalEntry> Open = {};
    std::string Text = {};
};

namespace
{
enum ResultCode : int
{
    Success = 0,
    ArgumentNull = 9,
    ArgumentOutOfRange = 10,
    OutOfMemory = 27,
    IO = 58,
    InvalidFormat = static_cast<int>(0xC0090114)
};

/// Without a destructor, so that a thread may end after the library.
thread_local char lastError[512] = "";

int Fail(ResultCode code, const char* what) noexcept
{
    std::snprintf(lastError, sizeof(lastError), "%s", what);
    return code;
}

/// Runs the action unless an argument is null; nothing leaves it.
template <class TAction, class... TArguments>
int Guard(TAction&& action, const TArguments*... arguments) noexcept
{
    if ((!arguments || ...))
    {
        return Fail(ArgumentNull, "an argument is null");
    }
    try
    {
        action();
        return Success;
    }
    catch (const std::out_of_range& error)
    {
        return Fail(ArgumentOutOfRange, error.what());
    }
    catch (const std::bad_alloc&)
    {
        return Fail(OutOfMemory, "out of memory");
    }
    catch (const std::runtime_error& error)
    {
        return Fail(IO, error.what());
    }
    catch (const std::exception& error)
    {
        return Fail(InvalidFormat, error.what());
    }
}

std::string_view OrNothing(const char* text)
{
    return text == nullptr ? std::string_view() : std::string_view(text);
}

/// Far from where sums of times end.
constexpr long long MaximumTime = 1LL << 53;

Time TimeOf(long long now)
{
    if (now < 0 || now > MaximumTime)
    {
        throw std::out_of_range("the time " + std::to_string(now) + " is not from 0 to " + std::to_string(MaximumTime));
    }
    return Time(now);
}

DeviceMessage::MessageKind KindOf(int message)
{
    switch (message)
    {
    case DiscoveryInventorySignature:
        return DeviceMessage::MessageKind::Signature;
    case DiscoveryInventoryHello:
        return DeviceMessage::MessageKind::Hello;
    case DiscoveryInventoryBye:
        return DeviceMessage::MessageKind::Bye;
    default:
        throw std::out_of_range(std::to_string(message) + " is no kind of message");
    }
}

int NumberOf(Wish::WishKind kind)
{
    switch (kind)
    {
    case Wish::WishKind::AskAll:
        return DiscoveryInventoryAskAll;
    case Wish::WishKind::AskMAC:
        return DiscoveryInventoryAskMAC;
    case Wish::WishKind::AskIP:
        return DiscoveryInventoryAskIP;
    case Wish::WishKind::IsReachable:
        return DiscoveryInventoryIsReachable;
    case Wish::WishKind::CountLost:
        return DiscoveryInventoryCountLost;
    case Wish::WishKind::Rename:
        return DiscoveryInventoryRename;
    case Wish::WishKind::RenameAt:
        return DiscoveryInventoryRenameAt;
    case Wish::WishKind::Configure:
        return DiscoveryInventoryConfigure;
    }
    return DiscoveryInventoryNoWish;
}

/// The next wish that is the host's to carry out.
std::optional<Wish> NextWishOf(DiscoveryInventory& session)
{
    std::optional<Wish> wish = session.Engine.NextWish();
    while (wish && ((session.System && SystemAnswers::Answer(session.Engine, *wish)) ||
                    (session.Kept && wish->IsRequestOfChange() && !session.Kept->Begin(wish->Change, session.Engine))))
    {
        wish = session.Engine.NextWish();
    }
    return wish;
}

/// With the Id of the entry of a change that the session keeps.
std::string JsonOf(const Event& event, DiscoveryInventory& session)
{
    std::string json = event.ToJson();
    const std::string entry = event.Outcome && session.Kept ? session.Kept->End(*event.Outcome) : "";
    if (!entry.empty())
    {
        json.insert(json.size() - 1, R"(,"Entry":")" + entry + '"');
    }
    return json;
}

/// Keeps the text for the host.
const char* Give(DiscoveryInventory* session, std::string text)
{
    session->Text = std::move(text);
    return session->Text.c_str();
}
} // namespace

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryCreate(const char* optionsJson, DiscoveryInventory** session)
{
    return Guard(
        [&] {
            *session = nullptr;
            OptionsReader::SessionOptions options = OptionsReader::ReadSessionOptions(OrNothing(optionsJson));
            *session = new DiscoveryInventory{
                Session(std::move(options.Table)), options.AskSystem ? std::optional(SystemAnswers()) : std::nullopt,
                options.Journal.empty() ? std::nullopt : std::optional(KeptChanges(std::move(options.Journal)))};
        },
        session);
}

void DISCOVERY_INVENTORY_CALL DiscoveryInventoryFree(DiscoveryInventory* session)
{
    delete session;
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryFeed(DiscoveryInventory* session,
                                                    int message,
                                                    const char* hostJson,
                                                    long long now)
{
    return Guard([&] { session->Engine.Feed({KindOf(message), hostJson}, TimeOf(now)); }, session, hostJson);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryAdvanceTime(DiscoveryInventory* session, long long now)
{
    return Guard(
        [&] {
            const Time time = TimeOf(now);
            if (session->System)
            {
                session->System->TellOfPortAndNetworks(session->Engine, time);
            }
            session->Engine.Advance(time);
        },
        session);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryNextWish(DiscoveryInventory* session, DiscoveryInventoryWish* wish)
{
    return Guard(
        [&] {
            std::optional<Wish>& next = session->LastWish;
            next = NextWishOf(*session);
            *wish = next ? DiscoveryInventoryWish{NumberOf(next->Kind), next->Address.c_str(), next->Id}
                         : DiscoveryInventoryWish{DiscoveryInventoryNoWish, "", 0};
        },
        session, wish);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryWishText(DiscoveryInventory* session,
                                                        const char** text,
                                                        long long* change)
{
    return Guard(
        [&] {
            const std::optional<Wish>& last = session->LastWish;
            *text = last ? last->Text.c_str() : "";
            if (change != nullptr)
            {
                *change = last ? last->Change : 0;
            }
        },
        session, text);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryAnswerWish(DiscoveryInventory* session, long long id, long long value)
{
    return Guard([&] { session->Engine.Answer(id, value); }, session);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryNextEvent(DiscoveryInventory* session, const char** eventJson)
{
    return Guard(
        [&] {
            const std::optional<Event> event = session->Engine.NextEvent();
            *eventJson = event ? Give(session, JsonOf(*event, *session)) : nullptr;
        },
        session, eventJson);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryNextTime(DiscoveryInventory* session, long long* time)
{
    return Guard(
        [&] {
            Time next = session->Engine.NextTime();
            if (session->System)
            {
                next = std::min(next, session->System->NextLook());
            }
            *time = next.count();
        },
        session, time);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventorySetPortHeld(DiscoveryInventory* session, int isHeld, long long now)
{
    return Guard([&] { session->Engine.SetPortHeld(isHeld != 0, TimeOf(now)); }, session);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventorySetOffline(DiscoveryInventory* session, int isOffline, long long now)
{
    return Guard([&] { session->Engine.SetOffline(isOffline != 0, TimeOf(now)); }, session);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventorySnapshot(DiscoveryInventory* session, const char** json)
{
    return Guard([&] { *json = Give(session, session->Engine.ToJson()); }, session, json);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryStartSearch(DiscoveryInventory* session,
                                                           const char* optionsJson,
                                                           long long now)
{
    return Guard(
        [&] {
            std::vector<Network> networks = session->System ? SystemAnswers::Networks() : std::vector<Network>();
            session->Engine.StartSearch(OptionsReader::ReadSearchOptions(OrNothing(optionsJson), std::move(networks)),
                                        TimeOf(now));
        },
        session);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryStopSearch(DiscoveryInventory* session, long long now)
{
    return Guard([&] { session->Engine.StopSearch(TimeOf(now)); }, session);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventorySearchState(DiscoveryInventory* session, int* isOver, const char** json)
{
    return Guard(
        [&] {
            const SearchReport* const report = session->Engine.SearchState();
            *json = report == nullptr ? nullptr : Give(session, report->ToJson());
            if (isOver != nullptr)
            {
                *isOver = report != nullptr && report->IsOver ? 1 : 0;
            }
        },
        session, json);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryCheckChange(DiscoveryInventory* session,
                                                           const char* requestJson,
                                                           const char* optionsJson,
                                                           const char** refusalJson)
{
    return Guard(
        [&] {
            const std::optional<ChangeRefusal> refusal = session->Engine.CheckChange(
                ChangeRequest::Parse(requestJson), OptionsReader::ReadChangeOptions(OrNothing(optionsJson)).Change);
            *refusalJson = refusal ? Give(session, refusal->ToJson()) : nullptr;
        },
        session, requestJson, refusalJson);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryStartChange(
    DiscoveryInventory* session, const char* requestJson, const char* optionsJson, long long now, long long* id)
{
    return Guard(
        [&] {
            OptionsReader::StartOptions options = OptionsReader::ReadChangeOptions(OrNothing(optionsJson));
            *id =
                session->Engine.StartChange(ChangeRequest::Parse(requestJson), std::move(options.Change), TimeOf(now));
            if (session->Kept && !options.Undoes.empty())
            {
                session->Kept->SetUndoes(*id, std::move(options.Undoes));
            }
        },
        session, requestJson, id);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryChangeState(DiscoveryInventory* session, long long id, const char** json)
{
    return Guard(
        [&] {
            const ChangeReport* const report = session->Engine.ChangeState(id);
            *json = report == nullptr ? nullptr : Give(session, report->ToJson());
        },
        session, json);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryKeptChanges(DiscoveryInventory* session,
                                                           const char* macAddress,
                                                           const char** json)
{
    return Guard([&] { *json = session->Kept ? Give(session, session->Kept->ToJson(OrNothing(macAddress))) : nullptr; },
                 session, json);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryJournalCreate(DiscoveryInventoryJournal** journal)
{
    return Guard([&] { *journal = new DiscoveryInventoryJournal(); }, journal);
}

void DISCOVERY_INVENTORY_CALL DiscoveryInventoryJournalFree(DiscoveryInventoryJournal* journal)
{
    delete journal;
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryJournalFeed(DiscoveryInventoryJournal* journal, const char* line)
{
    return Guard([&] { journal->Entries.Feed(line); }, journal, line);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryJournalBegin(DiscoveryInventoryJournal* journal,
                                                            DiscoveryInventory* session,
                                                            long long change,
                                                            const char* time,
                                                            const char* undoes,
                                                            const char** line)
{
    return Guard(
        [&] {
            const ChangeReport* const report = session->Engine.ChangeState(change);
            if (report == nullptr)
            {
                throw std::out_of_range("no change with the id " + std::to_string(change) + " goes on");
            }
            JournalEntry entry = JournalEntry::Of(*report, time);
            entry.Undoes = OrNothing(undoes);
            journal->Text = Journal::BeginLine(entry);
            journal->Entries.Feed(journal->Text);
            journal->Open.insert_or_assign(change, std::move(entry));
            *line = journal->Text.c_str();
        },
        journal, session, time, line);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryJournalEnd(DiscoveryInventoryJournal* journal,
                                                          long long change,
                                                          const char* verdict,
                                                          const char** line)
{
    return Guard(
        [&] {
            const auto entry = journal->Open.find(change);
            *line = nullptr;
            if (entry != journal->Open.end())
            {
                journal->Text = Journal::EndLine(entry->second, verdict);
                journal->Entries.Feed(journal->Text);
                journal->Open.erase(entry);
                *line = journal->Text.c_str();
            }
        },
        journal, verdict, line);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryJournalEntries(DiscoveryInventoryJournal* journal, const char** json)
{
    return Guard(
        [&] {
            journal->Text = journal->Entries.ToJson();
            *json = journal->Text.c_str();
        },
        journal, json);
}

int DISCOVERY_INVENTORY_CALL DiscoveryInventoryJournalUndo(DiscoveryInventoryJournal* journal,
                                                           const char* macAddress,
                                                           const char** json)
{
    return Guard(
        [&] {
            journal->Text = journal->Entries.NewestToJson(OrNothing(macAddress));
            *json = journal->Text == "null" ? nullptr : journal->Text.c_str();
        },
        journal, json);
}

const char* DISCOVERY_INVENTORY_CALL DiscoveryInventoryGetLastError(void)
{
    return lastError;
}
