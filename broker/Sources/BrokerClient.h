#pragma once

#include "Broker/BrokerConnection.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct mosquitto;
struct mosquitto_message;
struct mqtt5__property; // NOLINT(bugprone-reserved-identifier): the MQTT library's name

namespace Zent::Discovery::Broker
{
/// One connection, from the attempt to its end: nothing of it is left for the next one. News are told on the thread
/// that calls Loop; the other operations are for any thread.
class BrokerConnection::Client final
{
public:
    using Tell = std::function<void(BrokerNews news)>;

    /// @throws std::runtime_error when the settings name files that TLS cannot use.
    Client(const BrokerSettings& settings, Tell tell);
    ~Client();

    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    /// Empty when it worked, else the reason. Waits as long as the system needs to find out.
    std::string Connect();

    /// Lets the connection work, for a second at most. Empty while it is there, else the reason of its end.
    std::string Loop();

    /// Whether the broker has accepted the connection.
    bool IsAccepted() const { return isAccepted; }

    std::optional<int> Publish(const Publication& publication);
    std::optional<int> Subscribe(const std::string& filter);
    std::optional<int> Follow(const std::string& filter);
    std::optional<int> Search(const std::string& filter, const std::string& endMark);
    void Unsubscribe(const std::string& filter);

    /// Loop ends soon.
    void SayGoodbye();

private:
    std::optional<int> SubscribeWith(int quality, int options, const std::vector<std::string>& filters);
    void PrepareTls();
    void PrepareWill();
    void OnLog(int level, const std::string& text);
    std::string EndReasonOf(int code) const;
    void OnConnect(int reason, const mqtt5__property* properties);
    void OnMessage(const mosquitto_message& message, const mqtt5__property* properties);
    void NoteStandstill();
    std::uint32_t LeftOf(std::uint32_t expiry);

    const BrokerSettings& settings;
    const Tell tell;
    std::string complaint; // of the libraries, until the broker has accepted; only the thread of Loop
    const std::unique_ptr<mosquitto, void (*)(mosquitto*)> handle;
    std::atomic<bool> isAccepted{false}; // written by the thread of Loop

    // Only the thread of Loop. Times are those of the machine's uptime.
    std::string refusal;                      // the broker's
    std::chrono::seconds loopBegan{0};        // the last one
    std::chrono::seconds standstill{0};       // the last one, as long as it counts
    std::chrono::seconds standstillCounts{0}; // until then
};
} // namespace Zent::Discovery::Broker
