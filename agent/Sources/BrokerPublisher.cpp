#include "BrokerPublisher.h"

#include "Log.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

using Zent::Discovery::Broker::BrokerMessage;
using Zent::Discovery::Broker::BrokerNews;
using Zent::Discovery::Broker::Publication;
using Zent::Discovery::Fleet::Command;
using Zent::Discovery::Fleet::CommandMessage;
using Zent::Discovery::Fleet::DeviceRecord;
using Zent::Discovery::Fleet::Manifest;
using Zent::Discovery::Fleet::Outbox;
using Zent::Discovery::Fleet::SiteState;
using Zent::Discovery::Fleet::Topic;

namespace Zent::Discovery::Agent
{
namespace
{
/// How long what is retained may take to come after the subscription. A broker says nothing when there is nothing.
constexpr Inventory::Time RetainedTime{3000};

constexpr Inventory::Time SubscriptionTime{30000};

/// How long somebody who removes a site may take to find nothing more of it.
constexpr Inventory::Time RemovalTime{8000};

/// How long another agent may take to say that it is still there.
constexpr Inventory::Time AnswerTime{5000};

/// Records keep changing now and then: a manifest is due when none waits, or after so long.
constexpr Inventory::Time LongestManifestDelay{5000};
constexpr Inventory::Time ShortestManifestDelay{500};

/// Brokers drop some of many messages that come at once.
constexpr std::size_t MaximumAsked = 100;
} // namespace

BrokerPublisher::BrokerPublisher(Fleet::SiteTopics topics,
                                 SiteState self,
                                 bool takesCommands,
                                 Broker::IBroker& broker,
                                 TakeNews takeNews,
                                 IListener& listener,
                                 Log& log)
    : topics(std::move(topics))
    , self(std::move(self))
    , takesCommands(takesCommands)
    , broker(broker)
    , takeNews(std::move(takeNews))
    , listener(listener)
    , log(log)
{
}

Publication BrokerPublisher::Will(const Fleet::SiteTopics& topics, SiteState self)
{
    self.Kind = SiteState::StateKind::Lost;
    return {topics.State(), self.ToJson(), true};
}

void BrokerPublisher::PublishRecord(const std::string& id, const DeviceRecord& record)
{
    outbox.Put(id, record.Revision(), record.ToJson());
}

void BrokerPublisher::RemoveRecord(const std::string& id)
{
    outbox.Remove(id);
}

void BrokerPublisher::PublishEvent(const Fleet::SiteEvent& event)
{
    if (phase == Phase::Serving && !Yields())
    {
        Send({topics.Events(), event.ToJson()});
    }
}

void BrokerPublisher::Reply(const CommandMessage& message, const Fleet::Verdict& verdict)
{
    if (topics.ReplyClient(message.ResponseTopic))
    {
        Publication reply{message.ResponseTopic, verdict.ToJson()};
        reply.CorrelationData = message.CorrelationData;
        reply.ExpirySeconds = static_cast<std::uint32_t>(Command::MaximumAge.count());
        Send(reply);
    }
}

bool BrokerPublisher::HasRecord(const std::string& id) const
{
    return outbox.There().contains(id);
}

void BrokerPublisher::BeReady()
{
    isReady = true;
}

void BrokerPublisher::Advance(Time now)
{
    for (const BrokerNews& news : takeNews())
    {
        Take(news, now);
    }
    if (otherUntil && now >= *otherUntil)
    {
        otherUntil.reset();
        other.reset();
    }
    if (phase == Phase::Reading && (reader.Whole() || now >= readingEnds))
    {
        StopReading();
    }
    if (phase != Phase::Serving || Yields())
    {
        return;
    }
    if (isReady)
    {
        AskForUnclaimed(now);
    }
    SendRecords();
    SendManifest(now);
    if (isReady && !isAnnounced && outbox.Waiting() == 0 && unclaimed.empty())
    {
        isAnnounced = true;
        SendState(SiteState::StateKind::Ready, true);
    }
}

Inventory::Time BrokerPublisher::NextTime(Time now) const
{
    Time next = Time::max();
    if (phase == Phase::Reading)
    {
        next = readingEnds;
    }
    if (phase == Phase::Serving && told != outbox.There())
    {
        next = std::max(now, lastManifest + (outbox.Waiting() > 0 ? LongestManifestDelay : ShortestManifestDelay));
    }
    next = std::min(next, otherUntil.value_or(next));
    for (const auto& [id, end] : unclaimed)
    {
        next = std::min(next, end);
    }
    return next;
}

ISitePublisher::PublisherStatus BrokerPublisher::Status() const
{
    PublisherStatus status{phase != Phase::Disconnected, outbox.Waiting()};
    if (phase == Phase::Disconnected)
    {
        status.Text = trouble.empty() ? "connecting to the broker" : "no broker: " + trouble;
    }
    else
    {
        status.Text = "broker connected, " + std::to_string(outbox.Waiting()) + " records waiting";
    }
    if (refused > 0)
    {
        status.Text += ", " + std::to_string(refused) + " refused by the broker: " + refusal;
    }
    if (phase != Phase::Disconnected && other && !otherUntil)
    {
        status.Text += ", another agent for this site on " + Log::Printable(other->Machine) +
                       (Yields() ? ": nothing is published here" : "");
    }
    return status;
}

void BrokerPublisher::Close()
{
    if (phase == Phase::Serving && isAnnounced && !Yields())
    {
        SendState(SiteState::StateKind::Disconnected, false);
    }
}

void BrokerPublisher::Take(const BrokerNews& news, Time now)
{
    switch (news.Kind)
    {
    case BrokerNews::NewsKind::Connected:
        log.Info("connected to the broker");
        trouble.clear();
        refused = 0;
        other.reset();
        otherUntil.reset();
        isAnnounced = false;
        requests.clear();
        Subscribe(topics.State());
        if (takesCommands)
        {
            Subscribe(topics.Commands());
        }
        StartReading(now);
        break;
    case BrokerNews::NewsKind::Disconnected:
        if (phase != Phase::Disconnected || news.Text != trouble) // not a line for each attempt
        {
            log.Warning("no connection to the broker: " + news.Text);
        }
        trouble = news.Text;
        phase = Phase::Disconnected;
        unclaimed.clear();
        break;
    case BrokerNews::NewsKind::Delivered:
        if (const auto found = requests.extract(news.Number); found && !found.mapped().Device.empty())
        {
            outbox.Settle(found.mapped().Device);
        }
        break;
    case BrokerNews::NewsKind::Refused:
        TakeRefusal(TakeAnswered(news, now), news.Text);
        break;
    case BrokerNews::NewsKind::Subscribed:
        TakeAnswered(news, now);
        break;
    case BrokerNews::NewsKind::Received:
        TakeMessage(news.Message, now);
        break;
    }
}

/// What the broker has answered; nothing when that is forgotten.
BrokerPublisher::Request BrokerPublisher::TakeAnswered(const BrokerNews& news, Time now)
{
    const auto found = requests.extract(news.Number);
    Request request = found ? std::move(found.mapped()) : Request{};
    if (request.Topic.starts_with(topics.Manifest())) // what there is of it comes now, or not at all
    {
        readingEnds = std::min(readingEnds, now + RetainedTime);
    }
    return request;
}

void BrokerPublisher::TakeRefusal(const Request& request, const std::string& reason)
{
    if (!request.Device.empty())
    {
        outbox.GiveUp(request.Device);
    }
    if (refused++ == 0)
    {
        refusal = (request.Topic.empty() ? "" : request.Topic + ": ") + reason;
        log.Error("the broker has refused what this agent needs: " + refusal);
    }
}

void BrokerPublisher::TakeMessage(const BrokerMessage& message, Time now)
{
    const std::optional<Topic> topic = Topic::Parse(message.Topic);
    if (!topic || topic->Site != topics.Site())
    {
        return;
    }
    switch (topic->Kind)
    {
    case Topic::TopicKind::State:
        TakeState(message, now);
        break;
    case Topic::TopicKind::Manifest:
        TakeManifest(topic->Part, message.Payload, now);
        break;
    case Topic::TopicKind::Device:
        TakeUnclaimed(topic->Device, message.Payload);
        break;
    case Topic::TopicKind::Commands:
        if (takesCommands && !Yields())
        {
            listener.TakeCommand({message.Payload, message.ResponseTopic, message.CorrelationData,
                                  message.ExpirySeconds, message.IsRetained});
        }
        break;
    case Topic::TopicKind::Events:
    case Topic::TopicKind::Reply:
        break;
    }
}

void BrokerPublisher::TakeManifest(std::size_t part, const std::string& bytes, Time now)
{
    if (phase != Phase::Reading)
    {
        return;
    }
    try
    {
        reader.Take(part, bytes);
    }
    catch (const std::invalid_argument& error)
    {
        log.Warning("unreadable manifest on the broker: " + std::string(error.what()));
        return;
    }
    readingEnds = std::max(readingEnds, now + RetainedTime); // over a slow line the next part takes as long again
    for (const std::size_t missing : reader.MissingParts())
    {
        if (asked.insert(missing).second)
        {
            Subscribe(topics.ManifestPart(missing));
            readingEnds = now + SubscriptionTime;
        }
    }
}

/// Two agents of one site would overwrite each other's records: the one that started later publishes nothing as long as
/// both are there. A state that was retained may be one of an agent that is gone without a word, so it is asked by the
/// own state; the first of two agents answers that.
void BrokerPublisher::TakeState(const BrokerMessage& message, Time now)
{
    if (message.Payload.empty())
    {
        StartAnew(now);
        return;
    }
    SiteState state{};
    try
    {
        state = SiteState::Parse(message.Payload);
    }
    catch (const std::invalid_argument& error)
    {
        log.Warning("unreadable state of the site on the broker: " + std::string(error.what()));
        return;
    }
    if (state.Agent == self.Agent)
    {
        // The will of a connection that was lost before: it may come after the next one has begun.
        isAnnounced = isAnnounced && state.Kind == SiteState::StateKind::Ready;
        return;
    }
    if (message.IsRetained)
    {
        if (state.Kind == SiteState::StateKind::Ready)
        {
            other = state;
            otherUntil = now + AnswerTime;
            SendState(SiteState::StateKind::Ready, true);
        }
        return;
    }
    if (state.Kind != SiteState::StateKind::Ready)
    {
        if (other && other->Agent == state.Agent)
        {
            log.Info("the other agent for site " + topics.Site() + " is gone");
            other.reset();
            otherUntil.reset();
        }
        isAnnounced = false;
        StartReading(now);
        return;
    }
    const bool isKnown = other && !otherUntil && other->Agent == state.Agent;
    other = state;
    otherUntil.reset();
    if (!isKnown)
    {
        log.Error("another agent for site " + topics.Site() + " is connected, on " + state.Machine + ", started " +
                  Fleet::UtcTime::ToText(state.Started) +
                  (Yields() ? "; it was first, and this one publishes nothing until it is gone" : ""));
    }
    if (!Yields())
    {
        SendState(SiteState::StateKind::Ready, true);
    }
}

void BrokerPublisher::TakeUnclaimed(const std::string& id, const std::string& bytes)
{
    if (unclaimed.erase(id) == 0)
    {
        return;
    }
    broker.Unsubscribe(topics.Device(id));
    std::optional<DeviceRecord> record;
    try
    {
        record = DeviceRecord::Parse(bytes);
    }
    catch (const std::invalid_argument& error)
    {
        log.Warning("unreadable record of device " + id + " on the broker: " + error.what());
    }
    listener.TakeUnclaimed(id, record);
}

void BrokerPublisher::StartReading(Time now)
{
    BeginReading(now + SubscriptionTime);
    Subscribe(topics.Manifest());
}

/// Somebody has removed the state, and whatever else there is of the site before or afterwards: once he is through with
/// it, all of it is published again.
void BrokerPublisher::StartAnew(Time now)
{
    log.Warning("somebody has removed the site from the broker: it will be published again");
    isAnnounced = false;
    BeginReading(now + RemovalTime);
}

/// Forgets what the broker has. At the end of the time all that is not known from it by then is published.
void BrokerPublisher::BeginReading(Time end)
{
    phase = Phase::Reading;
    std::erase_if(requests, [](const auto& each) { return !each.second.Device.empty(); });
    unclaimed.clear();
    reader = {};
    asked.clear();
    readingEnds = end;
}

void BrokerPublisher::StopReading()
{
    broker.Unsubscribe(topics.Manifest());
    for (const std::size_t part : asked)
    {
        broker.Unsubscribe(topics.ManifestPart(part));
    }
    phase = Phase::Serving;
    toldParts = reader.Parts();
    told = reader.Whole().value_or(Manifest::Revisions());
    isTold = reader.Whole().has_value();
    outbox.Synchronize(reader.Known());
}

void BrokerPublisher::AskForUnclaimed(Time now)
{
    for (const auto& [id, end] : std::map<std::string, Time>(unclaimed))
    {
        if (now >= end)
        {
            TakeUnclaimed(id, "");
        }
    }
    for (const std::string& id : outbox.Unclaimed())
    {
        if (unclaimed.size() >= MaximumAsked)
        {
            return;
        }
        if (!unclaimed.contains(id) && Subscribe(topics.Device(id)))
        {
            unclaimed.emplace(id, now + RetainedTime);
        }
    }
}

void BrokerPublisher::SendRecords()
{
    while (std::optional<Outbox::Record> record = outbox.Next())
    {
        const std::string topic = topics.Device(record->Id);
        const std::optional<int> number = broker.Publish({topic, std::move(record->Text), true});
        if (!number)
        {
            return; // the connection is lost: the next one begins with what is there
        }
        requests.insert_or_assign(*number, Request{topic, record->Id});
    }
}

/// Tells what the broker has acknowledged, and nothing else.
void BrokerPublisher::SendManifest(Time now)
{
    const Time delay = outbox.Waiting() > 0 ? LongestManifestDelay : ShortestManifestDelay;
    if ((isTold && told == outbox.There()) || now < lastManifest + delay)
    {
        return;
    }
    const std::vector<Manifest::Document> documents = Manifest::Write(outbox.There());
    for (const Manifest::Document& each : documents)
    {
        Send({each.Part == 0 ? topics.Manifest() : topics.ManifestPart(each.Part), each.Json, true});
    }
    for (std::size_t part = documents.size(); part <= toldParts; ++part)
    {
        Send({topics.ManifestPart(part), "", true});
    }
    told = outbox.There();
    toldParts = documents.size() - 1;
    isTold = true;
    lastManifest = now;
}

void BrokerPublisher::SendState(SiteState::StateKind kind, bool isAcknowledged)
{
    SiteState state = self;
    state.Kind = kind;
    Publication publication{topics.State(), state.ToJson(), true};
    publication.IsAcknowledged = isAcknowledged;
    Send(publication);
}

/// False while there is no connection.
bool BrokerPublisher::Subscribe(const std::string& topic)
{
    const std::optional<int> number = broker.Subscribe(topic);
    if (number)
    {
        requests.insert_or_assign(*number, Request{topic});
    }
    return number.has_value();
}

void BrokerPublisher::Send(const Publication& publication)
{
    if (const std::optional<int> number = broker.Publish(publication); number && publication.IsAcknowledged)
    {
        requests.insert_or_assign(*number, Request{publication.Topic});
    }
}

bool BrokerPublisher::Yields() const
{
    return other && other->IsBefore(self);
}
} // namespace Zent::Discovery::Agent
