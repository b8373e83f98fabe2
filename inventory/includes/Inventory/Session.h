#pragma once

#include "Inventory/Change.h"
#include "Inventory/DeviceTable.h"
#include "Inventory/EventQueue.h"
#include "Inventory/Questions.h"
#include "Inventory/Search.h"

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// What a host program knows of the network and wants to know. It does nothing by itself: the host program feeds it
/// with the library's messages and the time, carries out its wishes, and takes its events, again and again:
///
///     for (;;)
///     {
///         while (auto message = queue.Take()) session.Feed(*message, now());
///         session.Advance(now());
///         while (auto wish = session.NextWish()) CarryOut(*wish); // with session.Answer where one is expected
///         while (auto event = session.NextEvent()) Show(*event);
///         WaitForMessagesUntil(session.NextTime());
///     }
///
/// One thread at a time. Times are not negative; one earlier than the latest given counts as that one.
class Session final
{
public:
    explicit Session(DeviceTableOptions options = {});

    /// Takes a message from the library.
    /// @throws std::invalid_argument when it is none; nothing has changed.
    void Feed(DeviceMessage message, Time now);

    void Advance(Time now);

    /// Nothing when there is none at the moment.
    std::optional<Event> NextEvent();
    std::optional<Wish> NextWish();

    /// What has come of a wish that expects an answer; soon, for the session may wait for it. Answers to other wishes
    /// are left out.
    void Answer(std::int64_t id, std::int64_t value);

    /// Whether another program receives the answers of devices, as one on this machine may. Then no device is told to
    /// be gone.
    void SetPortHeld(bool isHeld, Time now);

    /// Whether no network interface of this machine takes part, as when its cable is pulled. Then the table asks
    /// nobody, and no device is told to be gone; afterwards all have their time again.
    void SetOffline(bool isOffline, Time now);

    /// Starts a search in the place of one that may be running. While it runs, the table asks nobody.
    /// @throws std::invalid_argument when the options are not possible; nothing has changed.
    void StartSearch(SearchOptions options, Time now);

    /// Ends the search as it is; nothing happens without one.
    void StopSearch(Time now);

    /// Of the search that was started last; null when there was none.
    const SearchReport* SearchState() const;

    /// What would be wrong with a change now, as far as is known; nothing when all is well.
    /// @throws std::invalid_argument when a text of the request is no address.
    std::optional<ChangeRefusal> CheckChange(const ChangeRequest& request, const ChangeOptions& options) const;

    /// Starts to change a device, beside whatever else goes on; ends with the event ChangeEnded. Gives the id of the
    /// change. The request is wished for once it has passed the checks: nothing has been sent before.
    /// @throws std::invalid_argument when a text of the request is no address, or the options of the search are not
    /// possible; nothing has changed.
    std::int64_t StartChange(const ChangeRequest& request, ChangeOptions options, Time now);

    /// Ends the change as it is, with its event; nothing happens when it has ended.
    void StopChange(std::int64_t id, Time now);

    /// Ends a change, with the code send-failed and the reason, whose request the host program cannot send.
    void FailChange(std::int64_t id, const std::string& reason);

    /// Of a change that has not ended; null for others. Valid until the next call of another operation.
    const ChangeReport* ChangeState(std::int64_t id) const;

    const DeviceTable& Devices() const;

    /// When to call Advance again, at the latest, if nothing comes before.
    Time NextTime() const;

    /// {"Now":1500,"LostEvents":0,"Devices":[...],"Search":{...}}: the rows of the table, and the state of the search,
    /// which is null without one.
    std::string ToJson() const;

private:
    void GoOn(Time time);
    void TellOfSearch();
    void TellOfChanges();
    void AdvanceChanges();
    std::vector<ChangeRequest> RequestsUnderWay() const;
    bool IsSearching() const;

    Questions questions;
    EventQueue events;
    DeviceTable devices;
    std::optional<Search> search;
    std::size_t roundsTold = 0;
    bool isEndTold = false;
    std::list<Change> changes; // that have not ended
    std::int64_t lastChange = 0;
    Time now{0};
};
} // namespace Zent::Discovery::Inventory
