#pragma once

#include "Fleet/Conversation.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Zent::Discovery::Fleet
{
/// Messages by which it is found out what a broker keeps and gives, below a topic of a client's own.
class Probes final
{
public:
    static constexpr std::size_t Count = 2000;

    static constexpr std::size_t SmallBytes = 16;
    static constexpr std::size_t RecordBytes = 1100;                    // as most records of devices have
    static constexpr std::size_t LargestBytes = std::size_t{65} * 1024; // as a record can have

    Probes() = delete;

    /// What all topics of the client's probes begin with.
    static std::string Root(const std::string& client);

    static std::vector<std::string> Topics(const std::string& client);

    /// Of the largest one, which is read by none who reads those.
    static std::string LargestTopic(const std::string& client);
};

/// Has a broker keep probes. Brokers break the connection after a refusal: the first probe goes alone, and with the
/// first refusal it is over.
class ProbeWriting final : public Conversation
{
public:
    ProbeWriting(std::vector<std::string> topics, std::size_t bytes);

    void TakeLimits(const Limits& limits) override { this->limits = limits; }

    void TakeAnswer(const Answer& answer, Time now) override;

    void TakeMessage(const Message& /*message*/, Time /*now*/) override {}

    std::vector<Step> Advance(Time now) override;

    Time NextTime() const override { return Time::max(); }

    bool IsOver() const override;

    const Limits& BrokersLimits() const { return limits; }

    const std::optional<Answer>& Refusal() const { return refusal; }

private:
    bool CanSend() const;

    const std::vector<std::string> topics;
    const std::size_t bytes;
    Limits limits;
    std::size_t sent = 0;
    std::size_t acknowledged = 0;
    bool hasBegun = false;
    std::optional<Answer> refusal;
};

/// Reads probes as readers of the inventory do: all at once.
class ProbeReading final : public Conversation
{
public:
    static constexpr Time AnswerTime{3000};
    static constexpr Time PauseTime{1000};

    explicit ProbeReading(const std::string& client);

    void TakeAnswer(const Answer& answer, Time now) override;
    void TakeMessage(const Message& message, Time now) override;
    std::vector<Step> Advance(Time now) override;
    Time NextTime() const override;

    bool IsOver() const override { return isOver; }

    std::size_t Received() const { return received.size(); }

private:
    const std::string root;
    std::set<std::string> received; // topics
    bool hasBegun = false;
    bool isOver = false;
    Time lastProgress{0};
};

/// What the probes have shown of a broker.
struct BrokerObservations
{
    Conversation::Limits Limits = {};
    std::optional<Conversation::Answer> Refusal = {};        // of a small probe or one of the size of records
    std::optional<Conversation::Answer> LargestRefusal = {}; // of the largest one
    std::optional<std::size_t> ReceivedSmall = {};
    std::optional<std::size_t> ReceivedRecords = {}; // of the size of records
};

/// A setting of a broker that is wrong.
struct BrokerFinding
{
    std::string Setting; // as mosquitto calls it; empty when it is unknown
    std::string Text;    // for people
    bool IsFatal;        // the inventory does not work; else readers get less than there is, and have to ask again

    /// All that follow from these observations, the worst first.
    static std::vector<BrokerFinding> Of(const BrokerObservations& observations, const std::string& client);
};
} // namespace Zent::Discovery::Fleet
