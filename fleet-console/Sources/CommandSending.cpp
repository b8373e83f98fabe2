#include "CommandSending.h"

#include "BrokerDialogue.h"
#include "Fleet/CommandExchange.h"
#include "Programs/RandomName.h"
#include "Programs/WrongArgument.h"
#include "Show/Output.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

using Zent::Discovery::Fleet::Command;
using Zent::Discovery::Fleet::CommandExchange;
using Zent::Discovery::Fleet::SiteTopics;
using Zent::Discovery::Fleet::Verdict;
using Zent::Discovery::Programs::RandomName;
using Zent::Discovery::Programs::WrongArgument;

namespace Zent::Discovery::FleetConsole
{
namespace
{
/// The level of the topic below which replies come: the broker lets a user read those below his own name.
std::string ClientOf(const CommandContext& context)
{
    const std::string& user = context.Broker.User;
    if (!user.empty() && !SiteTopics::IsName(user))
    {
        throw WrongArgument("--user: no replies reach \"" + user +
                            "\": it has other characters than letters, digits, '-', '_' and '.'");
    }
    return user.empty() ? context.Broker.ClientId : user;
}
} // namespace

const std::string& CommandSending::SiteOf(const CommandContext& context)
{
    if (context.Sites.size() != 1)
    {
        throw WrongArgument("--site: the command is for one site, which must be named");
    }
    return context.Sites.front();
}

std::vector<std::optional<Verdict>> CommandSending::Send(CommandContext& context,
                                                         std::vector<Command> commands,
                                                         const std::optional<std::chrono::milliseconds>& patience,
                                                         const std::string& status)
{
    const std::chrono::seconds longest = std::chrono::ceil<std::chrono::seconds>(
        patience.value_or(std::chrono::milliseconds(CommandExchange::LongestReply)));
    const std::string token = RandomName::Make() + RandomName::Make(); // too long to be guessed
    CommandExchange exchange(SiteTopics(SiteOf(context)), ClientOf(context), token, std::move(commands), longest);
    context.Out.ShowStatus(status + ", for " + std::to_string(longest.count()) + " s at most");
    try
    {
        BrokerDialogue::Hold(context, exchange);
    }
    catch (const std::runtime_error& error)
    {
        if (!exchange.HasSent())
        {
            throw;
        }
        context.Out.Complain(error.what());
    }
    return exchange.Verdicts();
}

std::string CommandSending::SentenceOf(const Verdict& verdict)
{
    const bool isPlain = verdict.Code.empty() && verdict.Name != CommandExchange::NoReply;
    return isPlain ? verdict.Text : verdict.Text + " (" + (verdict.Code.empty() ? verdict.Name : verdict.Code) + ")";
}

ExitStatus CommandSending::StatusOf(const std::vector<Verdict>& verdicts, const char* good)
{
    const auto isGood = [good](const Verdict& each) { return each.Name == good; };
    const auto isNotSent = [](const Verdict& each) { return each.Name == CommandExchange::NotSent; };
    return std::ranges::all_of(verdicts, isGood)      ? ExitStatus::Success
           : std::ranges::all_of(verdicts, isNotSent) ? ExitStatus::Usage
                                                      : ExitStatus::NoAnswer;
}
} // namespace Zent::Discovery::FleetConsole
