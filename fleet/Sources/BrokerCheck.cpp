#include "Fleet/BrokerCheck.h"

#include <utility>

namespace Zent::Discovery::Fleet
{
namespace
{
constexpr std::uint8_t PacketTooLarge = 0x95; // by MQTT 5

/// Of a publication beside its payload: topic and header.
constexpr std::size_t OtherBytes = 256;

std::string Sum(std::size_t received)
{
    return std::to_string(received) + " of " + std::to_string(Probes::Count);
}

std::vector<BrokerFinding> FindInAnswers(const BrokerObservations& observations, const std::string& client)
{
    const std::string topics = Probes::Root(client) + "#";
    std::vector<BrokerFinding> findings;
    if (!observations.Limits.KeepsRetained)
    {
        findings.push_back({"retain_available", "the broker keeps no messages; the inventory needs it to", true});
    }
    else if (const auto& refusal = observations.Refusal;
             refusal && refusal->Code == Conversation::Answer::NotAuthorized)
    {
        findings.push_back({"acl_file", "this user may not write to " + topics, true});
    }
    else if (refusal)
    {
        const bool isTooLarge = refusal->Code == PacketTooLarge;
        findings.push_back(
            {isTooLarge ? "message_size_limit" : "", "the broker refuses a probe: " + refusal->Text, true});
    }
    const std::size_t needed = Probes::LargestBytes + OtherBytes;
    if (const auto most = observations.Limits.MaximumPacketBytes; most && *most < needed)
    {
        findings.push_back({"max_packet_size",
                            "the broker takes no more than " + std::to_string(*most) +
                                " bytes at once; a record may need " + std::to_string(needed),
                            true});
    }
    else if (observations.LargestRefusal && !observations.Refusal)
    {
        findings.push_back({"message_size_limit",
                            "the broker refuses " + std::to_string(Probes::LargestBytes) +
                                " bytes, which a record may have: " + observations.LargestRefusal->Text,
                            true});
    }
    return findings;
}

/// A limit in messages shows with probes of any size; one in bytes shows with larger ones sooner.
std::vector<BrokerFinding> FindInCounts(std::size_t small,
                                        std::optional<std::size_t> records,
                                        const std::string& client)
{
    if (small == 0)
    {
        return {
            {"acl_file", "this user may not read " + Probes::Root(client) + "#, or the broker keeps nothing", true}};
    }
    std::vector<BrokerFinding> findings;
    if (small < Probes::Count)
    {
        findings.push_back({"max_queued_messages",
                            "a subscriber gets " + Sum(small) + " messages at once, and nobody is told; 0 is no limit",
                            false});
    }
    if (records && *records < small)
    {
        findings.push_back({"max_queued_bytes",
                            "a subscriber gets " + Sum(*records) + " messages of " +
                                std::to_string(Probes::RecordBytes) + " bytes at once, and " + Sum(small) +
                                " small ones, and nobody is told; 0 is no limit",
                            false});
    }
    return findings;
}
} // namespace

std::string Probes::Root(const std::string& client)
{
    return "discovery/check/" + client + "/";
}

std::vector<std::string> Probes::Topics(const std::string& client)
{
    std::vector<std::string> topics;
    for (std::size_t number = 0; number < Count; ++number)
    {
        topics.push_back(Root(client) + std::to_string(number));
    }
    return topics;
}

std::string Probes::LargestTopic(const std::string& client)
{
    return Root(client) + "largest/0";
}

ProbeWriting::ProbeWriting(std::vector<std::string> topics, std::size_t bytes)
    : topics(std::move(topics))
    , bytes(bytes)
{
}

void ProbeWriting::TakeAnswer(const Answer& answer, Time /*now*/)
{
    ++acknowledged;
    refusal = answer.IsRefusal() && !refusal ? std::optional(answer) : refusal;
}

std::vector<Conversation::Step> ProbeWriting::Advance(Time /*now*/)
{
    hasBegun = true;
    std::vector<Step> steps;
    const std::size_t most = acknowledged == 0 ? 1 : topics.size();
    while (CanSend() && sent < most)
    {
        steps.push_back({.Kind = Step::StepKind::Publish,
                         .Topic = topics[sent++],
                         .Payload = std::string(bytes, '.'),
                         .IsRetained = true});
    }
    return steps;
}

bool ProbeWriting::IsOver() const
{
    return hasBegun && (!CanSend() || acknowledged == topics.size());
}

/// What the broker would break the connection for is not sent.
bool ProbeWriting::CanSend() const
{
    return !refusal && limits.KeepsRetained &&
           (!limits.MaximumPacketBytes || bytes + OtherBytes <= *limits.MaximumPacketBytes);
}

ProbeReading::ProbeReading(const std::string& client)
    : root(Probes::Root(client))
{
}

void ProbeReading::TakeAnswer(const Answer& answer, Time now)
{
    lastProgress = now;
    isOver = answer.IsRefusal();
}

void ProbeReading::TakeMessage(const Message& message, Time now)
{
    if (message.IsRetained && received.insert(message.Topic).second)
    {
        lastProgress = now;
    }
}

std::vector<Conversation::Step> ProbeReading::Advance(Time now)
{
    if (!std::exchange(hasBegun, true))
    {
        lastProgress = now;
        return {{Step::StepKind::Subscribe, root + "+"}};
    }
    isOver = isOver || received.size() >= Probes::Count || now >= NextTime();
    return {};
}

Conversation::Time ProbeReading::NextTime() const
{
    return hasBegun ? lastProgress + (received.empty() ? AnswerTime : PauseTime) : Time{0};
}

std::vector<BrokerFinding> BrokerFinding::Of(const BrokerObservations& observations, const std::string& client)
{
    std::vector<BrokerFinding> findings = FindInAnswers(observations, client);
    if (observations.ReceivedSmall)
    {
        for (BrokerFinding& each : FindInCounts(*observations.ReceivedSmall, observations.ReceivedRecords, client))
        {
            findings.push_back(std::move(each));
        }
    }
    return findings;
}
} // namespace Zent::Discovery::Fleet
