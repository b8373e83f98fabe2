#include "Fleet/CommandExchange.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Zent::Discovery::Fleet
{
namespace
{
/// Of the subscription to the replies; the commands are counted from the next one.
constexpr std::size_t Subscription = 0;
} // namespace

CommandExchange::CommandExchange(SiteTopics topics,
                                 std::string client,
                                 std::string token,
                                 std::vector<Command> commands,
                                 std::chrono::seconds patience)
    : topics(std::move(topics))
    , client(std::move(client))
    , token(std::move(token))
    , responseTopic(this->topics.Replies(this->client) + this->token)
    , commands(std::move(commands))
    , patience(patience)
    , verdicts(this->commands.size())
{
}

void CommandExchange::TakeAnswer(const Answer& answer, Time /*now*/)
{
    if (answer.Number == Subscription)
    {
        if (answer.IsRefusal())
        {
            SettleAll({NotSent, NotAuthorized, "the broker lets " + client + " not read " + responseTopic});
            return;
        }
        hasSent = true;
        for (std::size_t i = 0; i < commands.size(); ++i)
        {
            steps.push_back({.Kind = Step::StepKind::Publish,
                             .Topic = topics.Commands(),
                             .Number = i + 1,
                             .Payload = commands[i].ToJson(),
                             .ResponseTopic = responseTopic,
                             .CorrelationData = CorrelationOf(i),
                             .ExpirySeconds = static_cast<std::uint32_t>(
                                 std::min(patience, std::chrono::seconds(Command::MaximumAge)).count())});
        }
        return;
    }
    const std::size_t command = answer.Number - 1;
    if (answer.Code == Answer::NotAuthorized) // and so it is with the others
    {
        SettleAll({NotSent, NotAuthorized, "the broker lets this user not write to " + topics.Commands()});
    }
    else if (answer.IsRefusal())
    {
        Settle(command, {NotSent, BrokerRefuses, "the broker refuses the command: " + answer.Text});
    }
    else if (answer.Code == Answer::NoMatchingSubscribers)
    {
        Settle(command, {NotSent, NoAgent,
                         "nobody takes commands for site " + topics.Site() +
                             ": its agent is not connected, or has no commands = true"});
    }
}

/// Others may write to the topic, too: what does not bear the token is none of the agent's.
void CommandExchange::TakeMessage(const Message& message, Time /*now*/)
{
    for (std::size_t i = 0; i < commands.size(); ++i)
    {
        if (message.Topic != responseTopic || message.CorrelationData != CorrelationOf(i))
        {
            continue;
        }
        try
        {
            Settle(i, Verdict::Parse(message.Payload));
        }
        catch (const std::invalid_argument& error)
        {
            Settle(i, {NoReply, "", "the agent's reply is none: " + std::string(error.what())});
        }
    }
}

std::vector<Conversation::Step> CommandExchange::Advance(Time now)
{
    if (!deadline)
    {
        deadline = now + patience;
        steps.push_back({Step::StepKind::Subscribe, responseTopic, Subscription});
    }
    else if (now >= *deadline)
    {
        SettleAll({NoReply, "",
                   "no reply from the agent of site " + topics.Site() + " within " + std::to_string(patience.count()) +
                       " s, and nobody knows whether it was carried out: may this user read " + topics.Replies(client) +
                       "#?"});
    }
    return std::exchange(steps, {});
}

Conversation::Time CommandExchange::NextTime() const
{
    return IsOver() ? Time::max() : deadline.value_or(Time{0});
}

bool CommandExchange::IsOver() const
{
    return std::ranges::all_of(verdicts, &std::optional<Verdict>::has_value);
}

std::string CommandExchange::CorrelationOf(std::size_t command) const
{
    return token + "-" + std::to_string(command);
}

/// The first word counts.
void CommandExchange::Settle(std::size_t command, Verdict verdict)
{
    if (!verdicts[command])
    {
        verdicts[command] = std::move(verdict);
    }
}

void CommandExchange::SettleAll(const Verdict& verdict)
{
    for (std::size_t i = 0; i < verdicts.size(); ++i)
    {
        Settle(i, verdict);
    }
}
} // namespace Zent::Discovery::Fleet
