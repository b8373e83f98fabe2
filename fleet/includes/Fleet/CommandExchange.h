#pragma once

#include "Fleet/Command.h"
#include "Fleet/Conversation.h"
#include "Fleet/Topics.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Fleet
{
/// Sends commands to the agent of a site, and waits for what it says to each of them.
class CommandExchange final : public Conversation
{
public:
    /// How long a verdict can take: a command may become so old until the agent has it; then a device may be silent for
    /// a while, and start anew for what it is given.
    static constexpr std::chrono::seconds LongestReply = Command::MaximumAge + std::chrono::seconds(70);

    /// The verdicts that come from this side: nothing was sent, with a code of these, or nobody has replied in time.
    static constexpr char NotSent[] = "not-sent";
    static constexpr char NoReply[] = "no-reply";
    static constexpr char NotAuthorized[] = "not-authorized"; // the broker lets this user not do it
    static constexpr char BrokerRefuses[] = "broker-refuses";
    static constexpr char NoAgent[] = "no-agent"; // nobody takes commands there

    /// Replies go to the client, which is the user's name where there is one: others must not read them. Nobody can
    /// guess the token, and it is never given twice. No command is carried out when patience is over.
    CommandExchange(SiteTopics topics,
                    std::string client,
                    std::string token,
                    std::vector<Command> commands,
                    std::chrono::seconds patience = LongestReply);

    void TakeAnswer(const Answer& answer, Time now) override;
    void TakeMessage(const Message& message, Time now) override;
    std::vector<Step> Advance(Time now) override;
    Time NextTime() const override;
    bool IsOver() const override;

    /// Whether a command may have reached the agent.
    bool HasSent() const { return hasSent; }

    /// In the order of the commands; nothing for those that wait.
    const std::vector<std::optional<Verdict>>& Verdicts() const { return verdicts; }

private:
    std::string CorrelationOf(std::size_t command) const;
    void Settle(std::size_t command, Verdict verdict);
    void SettleAll(const Verdict& verdict);

    const SiteTopics topics;
    const std::string client;
    const std::string token;
    const std::string responseTopic;
    const std::vector<Command> commands;
    const std::chrono::seconds patience;
    std::vector<std::optional<Verdict>> verdicts;
    std::vector<Step> steps;
    std::optional<Time> deadline; // once it has begun
    bool hasSent = false;
};
} // namespace Zent::Discovery::Fleet
