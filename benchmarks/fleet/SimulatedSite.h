#pragma once

#include "Broker/BrokerConnection.h"
#include "BrokerPublisher.h"
#include "Programs/MessageQueue.h"
#include "Programs/Mutex.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <thread>

namespace Benchmarks
{
/// An agent whose devices are made up: what discovery-agent does between its table and the broker, with its code and on
/// as many threads. Its operations are for one thread.
class SimulatedSite final : private Zent::Discovery::Broker::IBroker,
                            private Zent::Discovery::Agent::ISitePublisher::IListener
{
public:
    using Clock = std::chrono::steady_clock;

    struct SiteProgress
    {
        bool IsConnected = false;
        bool IsWhole = false; // the broker has acknowledged all records, their manifest and the state
        Clock::time_point ConnectedAt = {};
        Clock::time_point WholeAt = {};
        std::size_t FailedAttempts = 0; // to connect, so far
    };

    static std::string NameOf(std::uint16_t number);

    /// Connects from now on. Sites of other numbers have other devices.
    SimulatedSite(std::uint16_t number,
                  std::uint16_t devices,
                  Zent::Discovery::Broker::BrokerSettings settings,
                  Zent::Discovery::Agent::Log& log);

    /// Ends the connection with a goodbye.
    ~SimulatedSite() override;

    SimulatedSite(const SimulatedSite&) = delete;
    SimulatedSite& operator=(const SimulatedSite&) = delete;

    /// Lets all devices say what they have said before, as in a round that finds nothing new.
    void Repeat();

    /// Lets one device have another name.
    void ChangeOne();

    SiteProgress Progress() const;

    /// The destructor need not wait as long, when this was called before.
    void Stop();

private:
    std::optional<int> Publish(const Zent::Discovery::Broker::Publication& publication) override;
    std::optional<int> Subscribe(const std::string& filter) override;
    void Unsubscribe(const std::string& filter) override;
    void TakeCommand(const Zent::Discovery::Fleet::CommandMessage& message) override;
    void TakeUnclaimed(const std::string& id,
                       const std::optional<Zent::Discovery::Fleet::DeviceRecord>& record) override;

    void Say(std::uint16_t device);
    void Run();
    void Take(const Zent::Discovery::Inventory::DeviceMessage& message);
    std::deque<Zent::Discovery::Broker::BrokerNews> TakeNews();
    void Note(const Zent::Discovery::Broker::BrokerNews& each);
    bool TellsOfAll(const std::string& manifest) const;

    const std::uint16_t number;
    const std::uint16_t devices;
    const Zent::Discovery::Fleet::SiteTopics topics;
    std::uint64_t changes = 0; // of the first device; the caller's thread
    Zent::Discovery::Programs::MessageQueue messages;
    Zent::Discovery::Broker::BrokerConnection connection;

    // The agent's thread.
    Zent::Discovery::Agent::BrokerPublisher publisher;
    std::map<std::string, std::string> revisions; // by device

    mutable Zent::Discovery::Programs::Mutex lock;
    SiteProgress progress NFX_GUARDED_BY(lock);
    std::optional<int> stateNumber NFX_GUARDED_BY(lock); // of the publications that were sent last
    std::optional<int> manifestNumber NFX_GUARDED_BY(lock);
    bool sendsWholeManifest NFX_GUARDED_BY(lock) = false; // the one with manifestNumber tells of all devices
    bool isReady NFX_GUARDED_BY(lock) = false;            // the state has been acknowledged
    bool isTold NFX_GUARDED_BY(lock) = false;             // the broker has a manifest of all devices as they are

    std::thread thread;
};
} // namespace Benchmarks
