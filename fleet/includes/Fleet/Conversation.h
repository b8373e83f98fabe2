#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Zent::Discovery::Fleet
{
/// Something that is to be brought about on a connection to a broker, without the connection: it is told what comes,
/// and says what to do next. Begins with the first call of Advance, and ends with its connection. One thread at a time.
class Conversation
{
public:
    /// Since any moment, by a clock that is never set back.
    using Time = std::chrono::milliseconds;

    /// What is to be done on the connection.
    struct Step
    {
        enum class StepKind
        {
            Subscribe, // what is retained there comes, and then what is published
            Follow,    // only what is published from now on comes
            Search,    // as Subscribe, unacknowledged, so that brokers give more at once; then EndMark once more
            Unsubscribe,
            Publish // acknowledged
        };

        StepKind Kind;
        std::string Topic;      // or the filter of a subscription
        std::size_t Number = 0; // by which the conversation knows the answer to it; Unsubscribe has none
        std::string Payload = {};
        bool IsRetained = false;
        std::string ResponseTopic = {};
        std::string CorrelationData = {};
        std::optional<std::uint32_t> ExpirySeconds = {};
        std::string EndMark = {}; // of Search: a topic, or nothing
    };

    /// What the broker says to a subscription or a publication.
    struct Answer
    {
        // Reason codes of MQTT 5.
        static constexpr std::uint8_t NoMatchingSubscribers = 0x10; // nobody has taken the publication
        static constexpr std::uint8_t FirstOfRefusals = 0x80;
        static constexpr std::uint8_t NotAuthorized = 0x87;

        std::size_t Number; // of the step
        std::uint8_t Code = 0;
        std::string Text = {}; // the reason of a refusal

        bool IsRefusal() const { return Code >= FirstOfRefusals; }
    };

    /// What comes by a subscription. Whoever may write to the broker has written it.
    struct Message
    {
        std::string Topic;
        std::string Payload;
        bool IsRetained = false; // it was there before the subscription
        std::string CorrelationData = {};
    };

    /// What the broker says of itself when it accepts the connection.
    struct Limits
    {
        bool KeepsRetained = true;
        std::optional<std::uint32_t> MaximumPacketBytes = {};
    };

    virtual ~Conversation() = default;

    virtual void TakeLimits(const Limits& /*limits*/) {}

    virtual void TakeAnswer(const Answer& answer, Time now) = 0;
    virtual void TakeMessage(const Message& message, Time now) = 0;

    /// What is to be done now.
    virtual std::vector<Step> Advance(Time now) = 0;

    /// When to call Advance again, at the latest.
    virtual Time NextTime() const = 0;

    virtual bool IsOver() const = 0;
};
} // namespace Zent::Discovery::Fleet
