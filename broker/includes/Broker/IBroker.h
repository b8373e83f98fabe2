#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace Zent::Discovery::Broker
{
/// A message as it came from a broker. Whoever may write there has written it.
struct BrokerMessage
{
    std::string Topic;
    std::string Payload;
    bool IsRetained = false; // it was there before the subscription
    std::string ResponseTopic = {};
    std::string CorrelationData = {};
    std::optional<std::uint32_t> ExpirySeconds = {}; // what is left of them
};

/// A message to a broker.
struct Publication
{
    std::string Topic;
    std::string Payload;
    bool IsRetained = false;
    bool IsAcknowledged = true; // false for one that overtakes those whose acknowledgement is still to come
    std::string ResponseTopic = {};
    std::string CorrelationData = {};
    std::optional<std::uint32_t> ExpirySeconds = {};
};

/// Something that has happened on a connection.
struct BrokerNews
{
    enum class NewsKind
    {
        Connected,    // nothing is subscribed, nothing under way
        Disconnected, // or an attempt to connect has failed; Text says why
        Delivered,    // the broker has taken the publication with that number
        Refused,      // it has not, or has refused the subscription with that number; Text says why
        Subscribed,   // what is retained there comes from now on
        Received
    };

    NewsKind Kind;
    int Number = 0;
    std::string Text = {};
    BrokerMessage Message = {};
    std::uint8_t Code = 0;                                // of Delivered and Refused: the reason code of MQTT 5
    bool KeepsRetained = true;                            // of Connected: what the broker says of itself
    std::optional<std::uint32_t> MaximumPacketBytes = {}; // the same
};

/// What can be asked of a broker, once and for the connection that there is: nothing waits for the next one.
class IBroker
{
public:
    virtual ~IBroker() = default;

    /// A number by which Delivered or Refused tells of it; nothing while there is no connection.
    virtual std::optional<int> Publish(const Publication& publication) = 0;

    /// A number by which Subscribed or Refused tells of it; nothing while there is no connection. What is retained
    /// comes anew; what this connection publishes does not come back.
    virtual std::optional<int> Subscribe(const std::string& filter) = 0;

    virtual void Unsubscribe(const std::string& filter) = 0;
};
} // namespace Zent::Discovery::Broker
