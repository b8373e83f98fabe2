#pragma once

#include "Broker/IBroker.h"
#include "Fleet/Manifest.h"
#include "Fleet/Outbox.h"
#include "Fleet/SiteState.h"
#include "Fleet/Topics.h"
#include "ISitePublisher.h"

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <unordered_map>

namespace Zent::Discovery::Agent
{
class Log;

/// Keeps a site's topics on a broker. On each connection it reads its own manifest first, and then sends what differs:
/// so it does not matter what the broker, the connection or an earlier start of the agent has lost. One thread.
class BrokerPublisher final : public ISitePublisher
{
public:
    using TakeNews = std::function<std::deque<Broker::BrokerNews>()>;

    /// All must outlive the object. self is what the site's topic of states says of this agent while it is ready.
    BrokerPublisher(Fleet::SiteTopics topics,
                    Fleet::SiteState self,
                    bool takesCommands,
                    Broker::IBroker& broker,
                    TakeNews takeNews,
                    IListener& listener,
                    Log& log);

    /// What the broker is to publish when the connection breaks.
    static Broker::Publication Will(const Fleet::SiteTopics& topics, Fleet::SiteState self);

    void PublishRecord(const std::string& id, const Fleet::DeviceRecord& record) override;
    void RemoveRecord(const std::string& id) override;
    void PublishEvent(const Fleet::SiteEvent& event) override;
    void Reply(const Fleet::CommandMessage& message, const Fleet::Verdict& verdict) override;
    bool HasRecord(const std::string& id) const override;
    void BeReady() override;
    void Advance(Inventory::Time now) override;
    Inventory::Time NextTime(Inventory::Time now) const override;
    PublisherStatus Status() const override;
    void Close() override;

private:
    using Time = Inventory::Time;

    enum class Phase
    {
        Disconnected,
        Reading, // its own manifest
        Serving
    };

    /// A publication or a subscription.
    struct Request
    {
        std::string Topic;
        std::string Device = {}; // whose record is published
    };

    void Take(const Broker::BrokerNews& news, Time now);
    Request TakeAnswered(const Broker::BrokerNews& news, Time now);
    void TakeRefusal(const Request& request, const std::string& reason);
    void TakeMessage(const Broker::BrokerMessage& message, Time now);
    void TakeManifest(std::size_t part, const std::string& bytes, Time now);
    void TakeState(const Broker::BrokerMessage& message, Time now);
    void TakeUnclaimed(const std::string& id, const std::string& bytes);
    void StartReading(Time now);
    void StartAnew(Time now);
    void BeginReading(Time end);
    void StopReading();
    void AskForUnclaimed(Time now);
    void SendRecords();
    void SendManifest(Time now);
    void SendState(Fleet::SiteState::StateKind kind, bool isAcknowledged);
    bool Subscribe(const std::string& topic);
    void Send(const Broker::Publication& publication);
    bool Yields() const;

    const Fleet::SiteTopics topics;
    const Fleet::SiteState self;
    const bool takesCommands;
    Broker::IBroker& broker;
    const TakeNews takeNews;
    IListener& listener;
    Log& log;

    Phase phase = Phase::Disconnected;
    std::string trouble; // the last reason why there is no connection
    Fleet::Outbox outbox;
    std::unordered_map<int, Request> requests; // that the broker has not answered, by their numbers
    Fleet::ManifestReader reader;
    std::set<std::size_t> asked; // parts of the manifest
    Time readingEnds{0};

    Fleet::Manifest::Revisions told; // by the manifest that was sent last
    std::size_t toldParts = 0;
    bool isTold = false; // whether one was sent on this connection
    Time lastManifest{0};

    bool isReady = false;                  // the table is whole
    bool isAnnounced = false;              // as ready, on this connection
    std::map<std::string, Time> unclaimed; // records that were asked for, until when
    std::optional<Fleet::SiteState> other; // another agent of this site, which is there, too
    std::optional<Time> otherUntil;        // unless it says so until then
    std::size_t refused = 0;               // by the broker, on this connection
    std::string refusal;                   // of these the first
};
} // namespace Zent::Discovery::Agent
