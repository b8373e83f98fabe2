#include "ForgetCommand.h"

#include "BrokerDialogue.h"
#include "BrokerReader.h"
#include "Commands/Arguments.h"
#include "Fleet/FleetReading.h"
#include "Fleet/RetainedRemoval.h"
#include "Fleet/Topics.h"
#include "Question.h"
#include "Show/Output.h"
#include "Text/TerminalText.h"

using Zent::Discovery::Console::TerminalText;
using Zent::Discovery::Fleet::FleetReading;
using Zent::Discovery::Fleet::ReadingListener;
using Zent::Discovery::Fleet::RetainedRemoval;
using Zent::Discovery::Fleet::SiteReading;
using Zent::Discovery::Fleet::SiteState;
using Zent::Discovery::Fleet::SiteTopics;

namespace Zent::Discovery::FleetConsole
{
namespace
{
/// site b: lost, 412 devices; its agent ran on gateway-7
std::string DescriptionOf(const SiteReading& site)
{
    return "site " + site.Site() + ": " + (site.State() ? site.StateName() : "no state") + ", " +
           (site.Expected() ? std::to_string(*site.Expected()) + " devices" : "no manifest") +
           (site.State() ? "; its agent runs, or ran, on " + site.State()->Machine : "");
}
} // namespace

CLI::App& ForgetCommand::AddTo(CLI::App& program)
{
    Console::Arguments arguments(program, "forget", "remove all that the broker has of a site, for good");
    arguments.AddPositional("SITE", site, "its name");
    arguments.AddFlag("--yes", yes, "ask nothing: yes is the answer");
    arguments.AddFlag("--force", force, "though its agent is there, which publishes all of it anew");
    return arguments.Command();
}

ExitStatus ForgetCommand::Run(CommandContext& context)
{
    const ExitStatus agreed = Confirm(context);
    return agreed == ExitStatus::Success ? Remove(context) : agreed;
}

ExitStatus ForgetCommand::Confirm(CommandContext& context) const
{
    ReadingListener nobody;
    FleetReading reading({site}, SiteReading::ReadingScope::Summary, nobody);
    BrokerReader::Read(context, reading);
    if (context.Waiter.IsInterrupted())
    {
        return ExitStatus::Interrupted;
    }
    const SiteReading& found = reading.Sites().front();
    const std::string description = DescriptionOf(found);
    if (found.State() && found.State()->Kind == SiteState::StateKind::Ready && !force)
    {
        context.Out.Complain(description + ". It is there and would publish again: stop it first, or say --force");
        return ExitStatus::Usage;
    }
    if (yes)
    {
        context.Out.Conclude(TerminalText::Plain(description));
        return ExitStatus::Success;
    }
    switch (Question::Ask(context, TerminalText::Plain(description) + "\nRemove all that the broker has of it?"))
    {
    case Question::Reply::Yes:
        return ExitStatus::Success;
    case Question::Reply::No:
        context.Out.Complain("nothing was removed");
        return ExitStatus::Usage;
    case Question::Reply::Nobody:
        context.Out.Complain(description + ". There is no terminal to ask on; --yes says that it is to be removed");
        return ExitStatus::Usage;
    case Question::Reply::Interrupted:
        break;
    }
    return ExitStatus::Interrupted;
}

ExitStatus ForgetCommand::Remove(CommandContext& context) const
{
    RetainedRemoval removal(SiteTopics(site).Prefix());
    context.Out.ShowStatus("Removing site " + site);
    BrokerDialogue::Hold(context, removal);
    const std::string removed = std::to_string(removal.Removed());
    const std::string left = std::to_string(removal.Left());
    if (context.Out.IsJson())
    {
        context.Out.PrintLine(R"({"Forgotten":{"Site":")" + site + R"(","Removed":)" + removed + R"(,"Left":)" + left +
                              "}}");
    }
    if (context.Waiter.IsInterrupted())
    {
        context.Out.Complain("interrupted after " + removed + " messages were removed: once more removes the others");
        return ExitStatus::Interrupted;
    }
    if (!removal.Trouble().empty())
    {
        context.Out.Complain("site " + site + ": " + removed + " messages removed, " + left +
                             " left: " + removal.Trouble());
        return ExitStatus::Incomplete;
    }
    if (removal.Removed() == 0)
    {
        context.Out.Complain("the broker has nothing of site " + site + ", or nothing that this user may read");
        return ExitStatus::NoAnswer;
    }
    context.Out.Conclude("site " + site + " is forgotten: " + removed + " messages removed");
    return ExitStatus::Success;
}
} // namespace Zent::Discovery::FleetConsole
