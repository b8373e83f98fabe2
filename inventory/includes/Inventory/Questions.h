#pragma once

#include "Inventory/Network.h"
#include "Inventory/Time.h"
#include "Inventory/Wish.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace Zent::Discovery::Inventory
{
class Device;

/// All that a session wants to have asked, at a pace that neither the network, the library's queue nor the system's
/// table of neighbours suffers from. Who has something to ask waits until it may.
class Questions final
{
public:
    /// How long a question counts as unanswered; then nobody is there.
    static constexpr Time AnswerTime{3000};

    /// Packets to addresses that nobody has wait in the send buffer until the system gives them up: with some 270 of
    /// them the library's sending thread stands still.
    static constexpr std::size_t MaximumUnansweredByIP = 150;

    /// The library's queue takes 512 requests and messages.
    static constexpr std::size_t MaximumUnanswered = 400;

    /// Questions to single devices are a millisecond apart on the average. No more come at once than fall due while a
    /// host program takes messages in a batch: with less, a sweep of a large network would take many times as long.
    static constexpr Time Distance{1};
    static constexpr Time MaximumCredit{20};

    /// Whether one more device may be asked now.
    bool CanAskMAC(Time now);
    bool CanAskIP(Time now);

    /// When it is worth looking again whether devices may be asked.
    Time NextTime(Time now) const;

    void AskAll();

    /// Only while CanAskMAC.
    void AskMAC(const std::string& address, Time now);

    /// Only while CanAskIP. Asks the device once the host program has found a route to it. Gives the id of the wish to
    /// find it.
    std::int64_t AskIP(const std::string& address, Time now);

    /// Asks how many answers were lost.
    void CountLost();

    /// Asks for a route to the address, and nothing more. Gives the id of the wish.
    std::int64_t FindRoute(const std::string& address);

    /// Wishes for the request of a change. Gives the id of the wish.
    std::int64_t Request(Wish wish);

    /// Nobody waits any more for what the wish with that id is about. One that was not taken yet is left out.
    void Withdraw(std::int64_t id);

    /// Notes that a device has answered.
    void NoteAnswer(const Device& device);

    /// The next wish of those that the host program has not yet been given.
    std::optional<Wish> Next();

    /// What the host program has found out. Gives the wish it was about, unless that was not open.
    std::optional<Wish> Answer(std::int64_t id, std::int64_t value);

private:
    std::int64_t Wait(Wish wish);
    void WaitOnce(Wish::WishKind kind);
    bool CanAsk(Time now);
    void NoteQuestion(const std::string& address, bool isByIP, Time now);
    void Settle(const std::string& address);
    void GiveUp(Time now);

    struct Question
    {
        Time Asked;
        bool IsByIP;
    };

    std::deque<Wish> wishes;                      // not yet taken
    std::unordered_map<std::int64_t, Wish> open;  // taken, not yet answered
    std::unordered_set<std::int64_t> routesAlone; // wishes to find a route after which nobody is asked
    std::int64_t lastId = 0;

    std::unordered_map<std::string, Question> unanswered; // by address
    std::deque<std::pair<Time, std::string>> inOrder;     // of their times; holds answered ones too
    std::size_t unansweredByIP = 0;
    Time next{Time::min()};
};
} // namespace Zent::Discovery::Inventory
