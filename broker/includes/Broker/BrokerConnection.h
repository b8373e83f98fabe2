#pragma once

#include "Broker/BrokerSettings.h"
#include "Broker/IBroker.h"
#include "Programs/Mutex.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <thread>

namespace Zent::Discovery::Broker
{
/// A connection to an MQTT 5 broker that comes back by itself, on a thread of its own. What the broker says waits until
/// it is taken. All operations from one thread.
class BrokerConnection final : public IBroker
{
public:
    /// Messages beyond these are dropped, and counted, while nobody takes them.
    static constexpr std::size_t MaximumWaitingBytes = std::size_t{16} * 1024 * 1024;

    /// The broker is asked to send none that is larger.
    static constexpr std::uint32_t MaximumPacketBytes = 512 * 1024;

    /// Connects from now on. onNews is called on the connection's thread when there is something to take again.
    /// @throws std::runtime_error when the settings name files that TLS cannot use.
    BrokerConnection(BrokerSettings settings, std::function<void()> onNews);

    /// Breaks the connection, so that the broker publishes the will, unless Close came before.
    ~BrokerConnection() override;

    BrokerConnection(const BrokerConnection&) = delete;
    BrokerConnection& operator=(const BrokerConnection&) = delete;

    std::optional<int> Publish(const Publication& publication) override;
    std::optional<int> Subscribe(const std::string& filter) override;
    void Unsubscribe(const std::string& filter) override;

    /// As Subscribe, but nothing comes that is retained.
    std::optional<int> Follow(const std::string& filter);

    /// As Subscribe, unacknowledged, so that the broker gives more at once; and then what is retained at the topic
    /// endMark, unless that is empty, though it may have come already.
    std::optional<int> Search(const std::string& filter, const std::string& endMark);

    /// What has happened since, the oldest first.
    std::deque<BrokerNews> Take();

    /// How many messages were dropped so far.
    std::size_t Lost() const;

    /// Says goodbye: the broker publishes no will, unless it takes nothing more for seconds. Returns once the thread
    /// has ended.
    void Close();

private:
    class Client;

    void Run();
    std::string Serve(const std::shared_ptr<Client>& connection);
    std::string LoopOver(Client& connection);
    bool IsEndingWithGoodbye() const;
    bool WaitToRetry(unsigned failures);
    void Tell(BrokerNews each);
    void End(bool goodbye);

    const BrokerSettings settings;
    const std::function<void()> onNews;

    mutable Programs::Mutex lock;
    std::condition_variable_any changed;
    std::deque<BrokerNews> news NFX_GUARDED_BY(lock);
    std::size_t waitingBytes NFX_GUARDED_BY(lock) = 0;
    std::size_t lost NFX_GUARDED_BY(lock) = 0;
    bool isEnding NFX_GUARDED_BY(lock) = false;
    bool saysGoodbye NFX_GUARDED_BY(lock) = false;
    std::chrono::steady_clock::time_point endsBy NFX_GUARDED_BY(lock); // once it is ending

    Programs::Mutex clientLock;                                // held while the broker's library is called
    std::shared_ptr<Client> client NFX_GUARDED_BY(clientLock); // null while there is no connection
    std::thread thread;
};
} // namespace Zent::Discovery::Broker
