#include "SimulatedSite.h"

#include "Signature.h"

#include <array>
#include <cstdio>
#include <utility>

using namespace Zent::Discovery;
using Inventory::DeviceMessage;
using Programs::Lock;

namespace Benchmarks
{
namespace
{
/// So that a record has 1.1 KB.
constexpr std::size_t Interfaces = 2;
constexpr std::size_t Products = 3;

Inventory::Time Now()
{
    return std::chrono::duration_cast<Inventory::Time>(SimulatedSite::Clock::now().time_since_epoch());
}

/// A signature whose addresses no other device of any site has.
std::string Document(std::uint16_t site, std::uint16_t device, std::uint64_t name)
{
    constexpr std::string_view Common = "6F:68:00:00";
    std::array<char, Common.size() + 1> own{};
    std::snprintf(own.data(), own.size(), "%02X:%02X:%02X:%02X", site >> 8, site & 0xFF, device >> 8, device & 0xFF);
    std::string text(Signature(Interfaces, Products).Numbered(name));
    for (std::size_t at = text.find(Common); at != std::string::npos; at = text.find(Common, at + 1))
    {
        text.replace(at, Common.size(), own.data());
    }
    return text;
}

std::string IdOf(const std::string& document)
{
    constexpr std::string_view Member = R"("MACAddress":")";
    constexpr std::size_t AddressSize = 17;
    return *Fleet::DeviceId::FromMAC(
        std::string_view(document).substr(document.find(Member) + Member.size(), AddressSize));
}

Fleet::SiteState StateOf(const std::string& site)
{
    return {Fleet::SiteState::StateKind::Ready, site, "benchmark", std::chrono::system_clock::now()};
}

Broker::BrokerSettings Complete(Broker::BrokerSettings settings, const Fleet::SiteTopics& topics)
{
    settings.ClientId = "discovery-agent-" + topics.Site();
    settings.Will = Agent::BrokerPublisher::Will(topics, StateOf(topics.Site()));
    return settings;
}
} // namespace

std::string SimulatedSite::NameOf(std::uint16_t number)
{
    return "site-" + std::to_string(number);
}

SimulatedSite::SimulatedSite(std::uint16_t number,
                             std::uint16_t devices,
                             Broker::BrokerSettings settings,
                             Agent::Log& log)
    : number(number)
    , devices(devices)
    , topics(NameOf(number))
    , connection(Complete(std::move(settings), topics), [this] { messages.Wake(); })
    , publisher(
          topics, StateOf(topics.Site()), false, *this, [this] { return TakeNews(); }, *this, log)
{
    Repeat();
    thread = std::thread([this] { Run(); });
}

SimulatedSite::~SimulatedSite()
{
    Stop();
    thread.join();
    connection.Close();
}

void SimulatedSite::Repeat()
{
    for (std::uint16_t device = 0; device < devices; ++device)
    {
        Say(device);
    }
}

void SimulatedSite::ChangeOne()
{
    {
        const Lock guard(lock);
        isTold = false;
        progress.IsWhole = false;
    }
    ++changes;
    Say(0);
}

SimulatedSite::SiteProgress SimulatedSite::Progress() const
{
    const Lock guard(lock);
    return progress;
}

void SimulatedSite::Stop()
{
    messages.Interrupt();
}

std::optional<int> SimulatedSite::Publish(const Broker::Publication& publication)
{
    const std::optional<int> sent = connection.Publish(publication);
    const Lock guard(lock);
    if (publication.Topic == topics.State())
    {
        stateNumber = sent;
    }
    else if (publication.Topic == topics.Manifest())
    {
        manifestNumber = sent;
        sendsWholeManifest = TellsOfAll(publication.Payload);
    }
    return sent;
}

std::optional<int> SimulatedSite::Subscribe(const std::string& filter)
{
    return connection.Subscribe(filter);
}

void SimulatedSite::Unsubscribe(const std::string& filter)
{
    connection.Unsubscribe(filter);
}

void SimulatedSite::TakeCommand(const Fleet::CommandMessage& /*message*/) {}

void SimulatedSite::TakeUnclaimed(const std::string& /*id*/, const std::optional<Fleet::DeviceRecord>& /*record*/) {}

void SimulatedSite::Say(std::uint16_t device)
{
    constexpr std::uint64_t NamesOfOneState = 100'000;
    const std::uint64_t name = device == 0 ? changes * NamesOfOneState : device;
    messages.Push({DeviceMessage::MessageKind::Signature, Document(number, device, name)});
}

void SimulatedSite::Run()
{
    for (const DeviceMessage& each : messages.Take({}))
    {
        Take(each);
    }
    publisher.BeReady();
    while (!messages.IsInterrupted())
    {
        publisher.Advance(Now());
        const Inventory::Time next = publisher.NextTime(Now());
        const auto deadline =
            next == Inventory::Time::max() ? std::nullopt : std::optional<Clock::time_point>(Clock::time_point(next));
        for (const DeviceMessage& each : messages.Take(deadline))
        {
            Take(each);
        }
    }
    publisher.Close();
}

void SimulatedSite::Take(const DeviceMessage& message)
{
    const auto now = std::chrono::system_clock::now();
    const std::string id = IdOf(message.Document);
    const Fleet::DeviceRecord record(Fleet::DeviceRecord::DeviceState::Present,
                                     Fleet::DeviceRecord::HostOf(message.Document), now);
    std::string& revision = revisions[id];
    if (record.Revision() == revision)
    {
        return;
    }
    publisher.PublishRecord(id, record);
    if (!std::exchange(revision, record.Revision()).empty())
    {
        publisher.PublishEvent({topics.Site(), revision, "changed", id, now,
                                R"({"Revision":")" + revision + R"(","Host":)" + record.Host() + "}"});
    }
}

std::deque<Broker::BrokerNews> SimulatedSite::TakeNews()
{
    std::deque<Broker::BrokerNews> news = connection.Take();
    for (const Broker::BrokerNews& each : news)
    {
        Note(each);
    }
    return news;
}

void SimulatedSite::Note(const Broker::BrokerNews& each)
{
    using Kind = Broker::BrokerNews::NewsKind;
    const Lock guard(lock);
    switch (each.Kind)
    {
    case Kind::Connected:
        progress.IsConnected = true;
        progress.ConnectedAt = Clock::now();
        break;
    case Kind::Disconnected:
        progress.FailedAttempts += progress.IsConnected ? 0 : 1;
        progress.IsConnected = false;
        stateNumber.reset(); // the next connection counts anew
        manifestNumber.reset();
        isReady = false;
        isTold = false;
        break;
    case Kind::Delivered:
        isReady = isReady || each.Number == stateNumber;
        isTold = each.Number == manifestNumber ? sendsWholeManifest : isTold;
        break;
    case Kind::Received:
        isTold = each.Message.Topic == topics.Manifest() ? TellsOfAll(each.Message.Payload) : isTold;
        break;
    case Kind::Refused:
    case Kind::Subscribed:
        break;
    }
    if (const bool isWhole = isReady && isTold; isWhole != progress.IsWhole)
    {
        progress.IsWhole = isWhole;
        progress.WholeAt = Clock::now();
    }
}

bool SimulatedSite::TellsOfAll(const std::string& manifest) const
{
    return manifest.find(R"("Devices":)" + std::to_string(devices) + ",") != std::string::npos;
}
} // namespace Benchmarks
