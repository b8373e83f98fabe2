#pragma once

#include "DiscoveryInventory.h"
#include "DiscoveryRecords.h"
#include "DiscoverySession.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Zent::Discovery
{
/// The library DiscoveryInventory has refused options, whose member the text names, or cannot read the journal.
class InventoryError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// How an inventory is kept.
struct InventoryOptions
{
    /// Whose addresses a search may ask one by one if answers are lost, such as 192.168.1.10/24. Without it those of
    /// this machine, but for loopback and what bears a name that container engines, hypervisors and tunnels give.
    std::optional<std::vector<std::string>> Networks;

    std::size_t MaximumDevices = 10000;          ///< the device longest unseen gives way to a new one
    std::chrono::milliseconds AskEvery{10000};   ///< from one question to all devices to the next; 0 asks nobody
    std::chrono::milliseconds StaleAfter{15000}; ///< of silence, and a device is asked by itself
    std::chrono::milliseconds AnswerTime{1000};  ///< from such a question to the next one
    unsigned Misses = 8;                         ///< so many of them unanswered and the device is gone
    std::vector<std::string> AcceptedConflicts;  ///< not told, such as ip:10.0.0.5 or name:press-4

    /// A file that keeps each change before it is sent, and what has come of it, so that it can be taken back later;
    /// empty for none. Other programs, such as discovery-console, may keep the same one at the same time.
    std::string Journal;
};

/// How to search.
struct DiscoverOptions
{
    std::chrono::milliseconds Wait{10000}; ///< after which it ends at the latest
    bool Sweep = true; ///< whether the addresses of the networks may be asked one by one if answers are lost
    std::vector<std::string> Also; ///< addresses elsewhere to ask one by one, such as 10.2.0.5 and 10.2.1.0/26
};

/// How to change a device.
struct ChangeOptions
{
    bool Look = true; ///< searches first, for three seconds at most, for devices that have the name or the address
    std::chrono::milliseconds Timeout{3000}; ///< until the device is to show the change

    /// The same for a device that takes it when it starts anew. Without it that is a minute for one that falls silent,
    /// and Timeout for one that goes on as before.
    std::optional<std::chrono::milliseconds> RebootTimeout;

    bool Force = false; ///< goes on when the device is unknown or another one has the name or the address
};

/// The devices that a session hears of: which there are, what becomes of them, and whether that is all.
///
/// Link to the library DiscoveryInventory. A thread of its own asks the devices and calls the handlers, one at a time.
/// All operations may be called from any thread and in any handler, but those that search or change not in a handler,
/// and the destructor in none at all. What a handler throws goes to the handler of failures and no further.
class DiscoveryInventorySession final
{
public:
    using Handler = std::function<void(const DeviceChange& change)>;
    using FailureHandler = DiscoverySession::FailureHandler;

    /// Begins to listen beside the session's handlers; as long as the session is started, all devices are asked at once
    /// and again every ten seconds. The session must outlive the inventory.
    /// @throws InventoryError when an option is not possible, DiscoveryError when the session is closed.
    explicit DiscoveryInventorySession(DiscoverySession& session, const InventoryOptions& options = InventoryOptions())
        : session(session)
        , networks(options.Networks ? ",\"Networks\":" + ArrayOf(*options.Networks) : "")
        , engine(Create(options))
        , listener(std::make_shared<const DiscoverySession::Listener>(
              [mailbox = mailbox](DiscoverySession::MessageKind kind, const char* hostJson) {
                  mailbox->Put({static_cast<int>(kind), hostJson});
              }))
    {
        for (const std::string& line : options.Journal.empty() ? std::vector<std::string>() : ReadBrokenLines())
        {
            Guard([&line] { throw InventoryError(line); }); // which tells of it
        }
        session.AddListener(listener);
        thread = std::thread([this] { Run(); });
    }

    /// Returns after a running handler has returned; none runs afterwards.
    ~DiscoveryInventorySession()
    {
        mailbox->Close();
        thread.join();
    }

    DiscoveryInventorySession(const DiscoveryInventorySession&) = delete;
    DiscoveryInventorySession& operator=(const DiscoveryInventorySession&) = delete;

    /// All devices that are known, in the order in which they were first seen.
    std::vector<KnownDevice> Devices() const
    {
        const std::lock_guard<std::mutex> lock(engineLock);
        const char* text = nullptr;
        Check(DiscoveryInventorySnapshot(engine.get(), &text));
        return JsonView(text)["Devices"].Map(
            [this](const JsonView& row) { return DiscoveryRecords::ReadDevice(row, systemStart); });
    }

    /// Whether another program receives what devices send, too; then none is told to be gone. While this machine has
    /// lost all its networks (tunnels, point-to-point and container interfaces do not count), the inventory asks nobody
    /// by itself, and none is told to be gone either.
    bool IsPortHeld() const { return isPortHeld; }

    /// Searches until all devices are found; by then the handlers were told of them. A search of another thread goes
    /// first.
    /// @throws IncompleteSearch with what was found when it has ended before, InventoryError when an option is not
    /// possible, std::logic_error in a handler of the inventory.
    SearchResult Discover(const DiscoverOptions& options = DiscoverOptions())
    {
        RefuseInHandler("a search");
        const std::string text = "{\"Wait\":" + std::to_string(options.Wait.count()) +
                                 ",\"Sweep\":" + (options.Sweep ? "true" : "false") + networks +
                                 ",\"Also\":" + ArrayOf(options.Also) + "}";
        const std::lock_guard<std::mutex> turn(searchTurn);
        std::unique_lock<std::mutex> lock(engineLock);
        Check(DiscoveryInventoryStartSearch(engine.get(), text.c_str(), Now()));
        searchReport.reset();
        ++searches;
        mailbox->Wake();
        somethingEnded.wait(lock, [this] { return searchReport.has_value(); });
        SearchResult result{{}, *searchReport};
        lock.unlock();
        for (KnownDevice& device : Devices())
        {
            if (device.IsHere)
            {
                result.Devices.push_back(std::move(device));
            }
        }
        if (!JsonView(result.Report)["Complete"].IsTrue())
        {
            throw IncompleteSearch(std::move(result));
        }
        return result;
    }

    /// Gives the device with a MAC address a new host name, and returns when it has it. Any number of changes go on at
    /// once.
    /// @throws ChangeFailed with the outcome when it does not come to have it, InventoryError when an argument is not
    /// possible, std::logic_error in a handler of the inventory.
    ChangeOutcome Rename(const std::string& newHostName,
                         const std::string& macAddress,
                         const ChangeOptions& options = ChangeOptions())
    {
        return Change(MemberOf("MACAddress", macAddress) + "," + MemberOf("HostName", newHostName), options);
    }

    /// The same for the device at an IP address, which broadcasts need not reach.
    ChangeOutcome RenameAt(const std::string& newHostName,
                           const std::string& ipAddress,
                           const ChangeOptions& options = ChangeOptions())
    {
        return Change(MemberOf("IPAddress", ipAddress) + "," + MemberOf("HostName", newHostName), options);
    }

    /// The same for the settings of the interface that has their MAC address.
    ChangeOutcome Configure(const NICSettings& settings, const ChangeOptions& options = ChangeOptions())
    {
        return Change(
            MemberOf("MACAddress", settings.MACAddress) + "," + MemberOf("FriendlyName", settings.FriendlyName) + "," +
                MemberOf("IPAddress", settings.IPAddress) + "," + MemberOf("SubNetMask", settings.SubNetMask) + "," +
                MemberOf("DefaultGateway", settings.DefaultGateway) + "," + MemberOf("MTU", settings.MTU),
            options);
    }

    /// Gives a device back what it had before a change, whatever has come of that one.
    /// @throws as Rename does, and InventoryError when it is not known what the device had.
    ChangeOutcome Undo(const ChangeOutcome& outcome, ChangeOptions options = ChangeOptions())
    {
        if (outcome.UndoRequest.empty())
        {
            throw InventoryError("it is not known what the device had before the change");
        }
        options.Look = false;
        return Change(outcome.UndoRequest.substr(1, outcome.UndoRequest.size() - 2), options,
                      ",\"GivesBack\":true," + MemberOf("Undoes", outcome.Entry));
    }

    /// The same for the newest change of the journal that is not taken back, as after the host has started anew; of the
    /// interface with that MAC address, or without one of any. An exchange of names or addresses takes a call for each
    /// of its changes, the newest first.
    /// @throws as Rename does, and InventoryError when there is no such change, or the journal cannot be read.
    ChangeOutcome UndoNewest(const std::string& macAddress = "", const ChangeOptions& options = ChangeOptions())
    {
        const std::string kept = ReadJournal(macAddress);
        const JsonView newest = JsonView(kept)["Newest"];
        ChangeOutcome outcome{};
        outcome.UndoRequest = newest["Request"].Raw();
        outcome.Entry = newest["Entry"]["Id"].Text();
        if (outcome.Entry.empty())
        {
            throw InventoryError("the journal has no change to undo");
        }
        return Undo(outcome, options);
    }

    /// The changes that the journal has, the oldest first.
    /// @throws InventoryError when the inventory keeps no journal, or it cannot be read.
    std::vector<JournalEntry> Journal() const
    {
        const std::string kept = ReadJournal("");
        return JsonView(kept)["Entries"].Map(&DiscoveryRecords::ReadEntry);
    }

    /// Set what is called from now on; an empty function for nothing.
    void OnAppeared(Handler handler) { SetHandler(DeviceEvent::Appeared, std::move(handler)); }

    void OnChanged(Handler handler) { SetHandler(DeviceEvent::Changed, std::move(handler)); }

    void OnLeft(Handler handler) { SetHandler(DeviceEvent::Left, std::move(handler)); }

    void OnGone(Handler handler) { SetHandler(DeviceEvent::Gone, std::move(handler)); }

    void OnReturned(Handler handler) { SetHandler(DeviceEvent::Returned, std::move(handler)); }

    void OnFlapping(Handler handler) { SetHandler(DeviceEvent::Flapping, std::move(handler)); }

    void OnSettled(Handler handler) { SetHandler(DeviceEvent::Settled, std::move(handler)); }

    void OnForgotten(Handler handler) { SetHandler(DeviceEvent::Forgotten, std::move(handler)); }

    void OnConflict(Handler handler) { SetHandler(DeviceEvent::Conflict, std::move(handler)); }

    /// Sets what is told about exceptions of handlers and about messages that cannot be read; without it they are
    /// written to standard error.
    void OnFailure(FailureHandler handler)
    {
        const std::lock_guard<std::mutex> lock(handlerLock);
        failureHandler.swap(handler); // the old one is destroyed outside of the lock
    }

private:
    static constexpr std::chrono::milliseconds BatchTime{20}; // in which messages are collected
    static constexpr std::chrono::milliseconds LongestWait{1000};

    struct Message
    {
        int Kind; // as the library numbers them
        std::string Document;
    };

    static_assert(static_cast<int>(DiscoverySession::MessageKind::Signature) == DiscoveryInventorySignature);
    static_assert(static_cast<int>(DiscoverySession::MessageKind::Hello) == DiscoveryInventoryHello);
    static_assert(static_cast<int>(DiscoverySession::MessageKind::Bye) == DiscoveryInventoryBye);

    /// Where messages wait for the thread. Shared with the listener, which may be running when the inventory ends.
    class Mailbox final
    {
    public:
        /// @throws std::runtime_error when it is full.
        void Put(Message message)
        {
            const std::lock_guard<std::mutex> guard(lock);
            if (messages.size() == Capacity)
            {
                throw std::runtime_error("the inventory is " + std::to_string(Capacity) +
                                         " messages behind: one is lost");
            }
            messages.push_back(std::move(message));
            if (messages.size() == 1)
            {
                changed.notify_one();
            }
        }

        /// Waits for a message and then for those that come with it, or until it is woken.
        std::vector<Message> Take(std::chrono::milliseconds wait)
        {
            std::unique_lock<std::mutex> guard(lock);
            changed.wait_for(guard, wait, [this] { return !messages.empty() || isWoken || isClosed; });
            if (!messages.empty())
            {
                changed.wait_for(guard, BatchTime, [this] { return isClosed; });
            }
            isWoken = false;
            return std::exchange(messages, {});
        }

        void Wake() { Set(isWoken); }

        void Close() { Set(isClosed); }

        bool IsClosed() const
        {
            const std::lock_guard<std::mutex> guard(lock);
            return isClosed;
        }

    private:
        static constexpr std::size_t Capacity = 65536;

        void Set(bool& flag)
        {
            const std::lock_guard<std::mutex> guard(lock);
            flag = true;
            changed.notify_one();
        }

        mutable std::mutex lock;
        std::condition_variable changed;
        std::vector<Message> messages; // this and all that follows are guarded by lock
        bool isWoken = false;
        bool isClosed = false;
    };

    struct Freeing
    {
        void operator()(::DiscoveryInventory* inventory) const { DiscoveryInventoryFree(inventory); }
    };

    using Engine = std::unique_ptr<::DiscoveryInventory, Freeing>;

    /// A request that the inventory's library wishes to be made.
    struct Request
    {
        int Kind;
        long long Id;
        std::string Address;
        std::string Text;

        bool IsChange() const { return Kind >= DiscoveryInventoryRename && Kind <= DiscoveryInventoryConfigure; }
    };

    /// What has happened.
    struct News
    {
        std::vector<DeviceChange> Changes;
        std::optional<std::string> Report;                         // of the latest search, when it has ended
        std::size_t Searches = 0;                                  // so many were started by then
        std::vector<std::pair<long long, ChangeOutcome>> Outcomes; // of changes, by their ids
    };

    static void Check(int code)
    {
        if (code != 0)
        {
            throw InventoryError(DiscoveryInventoryGetLastError());
        }
    }

    static Engine Create(const InventoryOptions& options)
    {
        const std::string text = "{\"MaximumDevices\":" + std::to_string(options.MaximumDevices) +
                                 ",\"AskEvery\":" + std::to_string(options.AskEvery.count()) +
                                 ",\"StaleAfter\":" + std::to_string(options.StaleAfter.count()) +
                                 ",\"AnswerTime\":" + std::to_string(options.AnswerTime.count()) +
                                 ",\"Misses\":" + std::to_string(options.Misses) +
                                 ",\"AcceptedConflicts\":" + ArrayOf(options.AcceptedConflicts) + "," +
                                 MemberOf("Journal", options.Journal) + ",\"AskSystem\":true}";
        ::DiscoveryInventory* inventory = nullptr;
        Check(DiscoveryInventoryCreate(text.c_str(), &inventory));
        return Engine(inventory);
    }

    static std::string ArrayOf(const std::vector<std::string>& texts)
    {
        std::vector<std::string> quoted;
        for (const std::string& text : texts)
        {
            quoted.push_back(DiscoverySession::Quoted(text));
        }
        return DiscoverySession::Array(quoted);
    }

    static std::string MemberOf(const std::string& name, const std::string& value)
    {
        return DiscoverySession::Quoted(name) + ":" + DiscoverySession::Quoted(value);
    }

    std::string ReadJournal(const std::string& macAddress) const
    {
        const std::lock_guard<std::mutex> lock(engineLock);
        const char* text = nullptr;
        Check(DiscoveryInventoryKeptChanges(engine.get(), macAddress.c_str(), &text));
        return text != nullptr ? text : throw InventoryError("the inventory keeps no journal");
    }

    std::vector<std::string> ReadBrokenLines() const
    {
        const std::string kept = ReadJournal("");
        return JsonView(kept)["Broken"].Map([](const JsonView& line) { return line.Text(); });
    }

    void RefuseInHandler(const std::string& what) const
    {
        if (std::this_thread::get_id() == thread.get_id())
        {
            throw std::logic_error(what + " in a handler of the inventory would wait for the handler");
        }
    }

    /// members are those of the request, more those of its options that no caller chooses.
    ChangeOutcome Change(const std::string& members, const ChangeOptions& options, const std::string& more = "")
    {
        RefuseInHandler("a change");
        const auto truth = [](bool is) { return is ? "true" : "false"; };
        const std::string text =
            std::string("{\"Look\":") + truth(options.Look) +
            ",\"Timeout\":" + std::to_string(options.Timeout.count()) +
            (options.RebootTimeout ? ",\"RebootTimeout\":" + std::to_string(options.RebootTimeout->count()) : "") +
            ",\"Force\":" + truth(options.Force) + more + "}";
        std::unique_lock<std::mutex> lock(engineLock);
        long long id = 0;
        Check(DiscoveryInventoryStartChange(engine.get(), ("{" + members + "}").c_str(), text.c_str(), Now(), &id));
        const auto outcome = outcomes.emplace(id, std::nullopt).first;
        mailbox->Wake();
        somethingEnded.wait(lock, [&] { return outcome->second.has_value(); });
        ChangeOutcome result = *std::move(outcome->second);
        outcomes.erase(outcome);
        if (result.Verdict != ChangeVerdict::Applied)
        {
            throw ChangeFailed(std::move(result));
        }
        return result;
    }

    void SetHandler(DeviceEvent event, Handler handler)
    {
        const std::lock_guard<std::mutex> lock(handlerLock);
        handlers[static_cast<std::size_t>(event)].swap(handler); // the old one is destroyed outside of the lock
    }

    long long Now() const
    {
        const auto elapsed = std::chrono::steady_clock::now() - steadyStart;
        return std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
    }

    void Run()
    {
        std::chrono::milliseconds wait{0};
        while (!mailbox->IsClosed())
        {
            const std::vector<Message> messages = mailbox->Take(wait);
            wait = LongestWait;
            Guard([&] { wait = Work(messages); });
        }
    }

    /// What the action throws goes to the handler of failures and no further.
    template <class TAction>
    void Guard(const TAction& action) noexcept
    {
        try
        {
            std::unique_lock<std::mutex> lock(handlerLock);
            const FailureHandler failure = failureHandler;
            lock.unlock();
            DiscoverySession::Call(action, failure);
        }
        catch (...)
        {
            std::fputs("DiscoveryInventorySession: a failure is lost\n", stderr);
        }
    }

    /// Messages, then the time, wishes and events. Returns how long nothing is to be done.
    std::chrono::milliseconds Work(const std::vector<Message>& messages)
    {
        std::vector<Request> requests;
        News news;
        std::chrono::milliseconds wait = LongestWait;
        Feed(messages);
        {
            const std::lock_guard<std::mutex> lock(engineLock);
            Check(DiscoveryInventoryAdvanceTime(engine.get(), Now()));
            requests = TakeRequests();
            news = TakeNews();
            long long next = 0;
            Check(DiscoveryInventoryNextTime(engine.get(), &next));
            wait = std::clamp(std::chrono::milliseconds(next - Now()), std::chrono::milliseconds(1), LongestWait);
        }
        for (const Request& request : requests) // without a lock: requests may wait for handlers
        {
            const bool isTaken = Make(request);
            if (request.IsChange())
            {
                const std::lock_guard<std::mutex> lock(engineLock);
                Check(DiscoveryInventoryAnswerWish(engine.get(), request.Id, isTaken ? 1 : 0));
                wait = std::chrono::milliseconds(0); // the change goes on at once
            }
        }
        for (const DeviceChange& change : news.Changes)
        {
            Tell(change);
        }
        const std::lock_guard<std::mutex> lock(engineLock);
        if (news.Report && news.Searches == searches)
        {
            searchReport = std::move(news.Report);
        }
        for (auto& [id, outcome] : news.Outcomes)
        {
            outcomes.at(id) = std::move(outcome);
        }
        somethingEnded.notify_all();
        return wait;
    }

    void Feed(const std::vector<Message>& messages)
    {
        for (const Message& message : messages)
        {
            Guard([&] {
                const std::lock_guard<std::mutex> lock(engineLock);
                Check(DiscoveryInventoryFeed(engine.get(), message.Kind, message.Document.c_str(), Now()));
            });
        }
    }

    std::vector<Request> TakeRequests()
    {
        std::vector<Request> requests;
        DiscoveryInventoryWish wish{};
        while (Check(DiscoveryInventoryNextWish(engine.get(), &wish)), wish.Kind != DiscoveryInventoryNoWish)
        {
            const char* text = nullptr;
            Check(DiscoveryInventoryWishText(engine.get(), &text, nullptr));
            requests.push_back({wish.Kind, wish.Id, wish.Address, text});
        }
        return requests;
    }

    News TakeNews()
    {
        News news;
        const char* text = nullptr;
        while (Check(DiscoveryInventoryNextEvent(engine.get(), &text)), text != nullptr)
        {
            const JsonView event(text);
            if (std::optional<DeviceChange> change = DiscoveryRecords::ReadChange(event))
            {
                news.Changes.push_back(std::move(*change));
            }
            else if (const std::string name = event["Event"].Text(); name == "ChangeEnded")
            {
                news.Outcomes.emplace_back(event["Id"].Number(), DiscoveryRecords::ReadOutcome(event));
            }
            else if (name == "PortHeld" || name == "PortReleased")
            {
                isPortHeld = name == "PortHeld";
            }
        }
        // Not from the event: one search may have ended to make way for another.
        int isOver = 0;
        Check(DiscoveryInventorySearchState(engine.get(), &isOver, &text));
        if (isOver != 0)
        {
            news.Report = text;
        }
        news.Searches = searches;
        return news;
    }

    /// Whether the library has taken the request. It does not while the server is stopped, for instance.
    bool Make(const Request& request)
    {
        try
        {
            switch (request.Kind)
            {
            case DiscoveryInventoryAskAll:
                session.Discover();
                return true;
            case DiscoveryInventoryAskMAC:
                session.RefreshClient(request.Address);
                return true;
            case DiscoveryInventoryAskIP:
                session.ReachClient(request.Address);
                return true;
            case DiscoveryInventoryRename:
                session.ChangeClientsHostName(request.Text, request.Address);
                return true;
            case DiscoveryInventoryRenameAt:
                session.ChangeClientsHostNameWithIP(request.Text, request.Address);
                return true;
            case DiscoveryInventoryConfigure:
                session.ChangeClientsIPConfigurationsFromJson(request.Text);
                return true;
            default:
                return false;
            }
        }
        catch (const DiscoveryError&)
        {
            return false;
        }
    }

    void Tell(const DeviceChange& change)
    {
        std::unique_lock<std::mutex> lock(handlerLock);
        const Handler handler = handlers[static_cast<std::size_t>(change.Event)];
        lock.unlock();
        if (handler)
        {
            Guard([&] { handler(change); });
        }
    }

    DiscoverySession& session;
    const std::string networks; // a member of the options of searches, if any
    const std::chrono::steady_clock::time_point steadyStart = std::chrono::steady_clock::now();
    const std::chrono::system_clock::time_point systemStart = std::chrono::system_clock::now();
    std::atomic<bool> isPortHeld{false}; // written by the thread
    const std::shared_ptr<Mailbox> mailbox = std::make_shared<Mailbox>();

    std::mutex searchTurn; // held during a search, taken before engineLock
    mutable std::mutex engineLock;
    const Engine engine;                                        // used under engineLock
    std::optional<std::string> searchReport;                    // of a search that has ended; guarded by engineLock
    std::size_t searches = 0;                                   // started by Discover; guarded likewise
    std::map<long long, std::optional<ChangeOutcome>> outcomes; // of changes that somebody waits for; guarded likewise
    std::condition_variable somethingEnded;                     // a search or a change

    std::mutex handlerLock; // never held while a handler runs
    std::array<Handler, static_cast<std::size_t>(DeviceEvent::Conflict) + 1> handlers; // guarded by handlerLock
    FailureHandler failureHandler;                                                     // guarded by handlerLock

    const std::shared_ptr<const DiscoverySession::Listener> listener;
    std::thread thread; // last: it uses all of the others
};
} // namespace Zent::Discovery
