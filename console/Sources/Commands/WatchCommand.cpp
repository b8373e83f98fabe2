#include "Commands/WatchCommand.h"

#include "Commands/Arguments.h"
#include "Commands/CommandContext.h"
#include "Commands/ConflictList.h"
#include "Commands/SharedOptions.h"
#include "Commands/SiteFileReader.h"
#include "Commands/SiteGuard.h"
#include "Doctor/Examination.h"
#include "Programs/SessionDriver.h"
#include "Show/LiveWatchView.h"
#include "Show/Output.h"
#include "Show/PlainWatchView.h"
#include "Show/SiteState.h"
#include "Terminal/Terminal.h"

#include <algorithm>
#include <functional>
#include <future>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <utility>

using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Inventory::DeviceTableOptions;
using Zent::Discovery::Inventory::Event;
using Zent::Discovery::Inventory::Time;
using Zent::Discovery::Programs::SessionDriver;

namespace Zent::Discovery::Console
{
namespace
{
constexpr Time RefreshInterval{200};
constexpr Time UsualInterval{10000};
constexpr std::chrono::seconds Patience{3}; // after which nobody's answer calls for a reason
} // namespace

CLI::App& WatchCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "watch",
                        "show devices as they come, change, fall silent and leave: on a terminal in a live table");
    const Arguments::Argument every =
        arguments.AddSeconds("--every", interval, "ask all devices again after so many seconds; 10 without it", 1.0);
    arguments.AddFlag("--listen", listensOnly, "ask nobody; then silence says nothing").Excludes(every);
    arguments.AddRepeated(
        "--accept-conflict", "CONFLICT|@FILE",
        [this](const std::string& text) {
            std::ranges::move(ConflictList::Parse(text), std::back_inserter(acceptedConflicts));
        },
        "do not tell this conflict between devices, such as ip:10.0.0.5; may be repeated");
    const Arguments::Argument expect = arguments.Add(
        "--expect", "FILE", siteFile, "tell what is missing, foreign or otherwise than this site file says");
    arguments.Add("--repair", "names", repairs, "give devices the names of the site file back; addresses stay")
        .Needs(expect)
        .MustPass([](const std::string& text) {
            return text == "names" ? "" : '"' + text + "\" is not names; nothing else is given back by itself";
        });
    SharedOptions::AddSelection(arguments, selection, "");
    return arguments.Command();
}

ExitStatus WatchCommand::Run(CommandContext& context)
{
    context.Session(); // says what is wrong before the view takes the terminal
    const Terminal terminal(Terminal::Stream::Output);
    std::optional<SiteState> site;
    if (!siteFile.empty())
    {
        site.emplace(SiteFileReader::Read(siteFile));
    }
    const std::unique_ptr<IWatchView> view = MakeView(terminal, context, site ? &*site : nullptr);
    bool isRead = true; // by somebody
    SessionDriver driver(
        context.Session(), context.Messages(), OptionsOfTable(),
        [&view](const std::string& text) { view->Complain(text); },
        [&view, &isRead](const DeviceMessage& message) { isRead = view->Show(message) && isRead; });
    std::optional<SiteGuard> guard;
    if (site)
    {
        guard.emplace(*site, !repairs.empty(), context, driver);
    }
    Watch(context, driver, *view, guard ? &*guard : nullptr, isRead);
    if (guard)
    {
        guard->Close(*view);
    }
    view->End(driver.Session().Devices());
    return isRead ? ExitStatus::Success : ExitStatus::Failure; // interrupting is how to end it
}

DeviceTableOptions WatchCommand::OptionsOfTable() const
{
    DeviceTableOptions options;
    options.AskEvery = listensOnly ? Time(0) : interval.value_or(UsualInterval);
    options.StaleAfter = options.AskEvery * 3 / 2;
    options.AcceptedConflicts = acceptedConflicts;
    return options;
}

/// Until the time is over, the user wants no more, or nobody reads what is written.
void WatchCommand::Watch(
    CommandContext& context, SessionDriver& driver, IWatchView& view, SiteGuard* guard, const bool& isRead)
{
    const Time end = context.Options().Wait.value_or(Time::max());
    unsigned knownChanges = 0;       // of the interfaces, after which all were asked
    std::future<std::string> reason; // nobody has answered for; the system takes its time to tell
    Time nextReason = listensOnly ? Time::max() : Patience;
    for (Time nextRefresh{0}; isRead && driver.Now() < end;)
    {
        const Time now = driver.Now();
        const unsigned changes = context.Session().InterfaceChanges();
        if (changes != knownChanges && !listensOnly && driver.AskAll())
        {
            knownChanges = changes;
        }
        if (now >= nextReason && !reason.valid() && driver.Session().Devices().Size() == 0)
        {
            reason = std::async(std::launch::async, &Doctor::Examination::ReasonForSilence,
                                std::cref(context.Options()), Patience.count());
            nextReason = Time::max();
        }
        if (reason.valid() && reason.wait_for(Time(0)) == std::future_status::ready)
        {
            view.Complain("no device has answered. " + reason.get());
        }
        while (const std::optional<Event> event = driver.Session().NextEvent())
        {
            view.Tell(*event);
            if (event->Kind == Event::EventKind::Offline)
            {
                const std::string lack = context.WhyNoInterface();
                view.Complain((lack.empty() ? "no network interface took part for a moment" : lack) +
                              "; silent devices are not called gone");
                nextReason = Time::max();
            }
            else if (event->Kind == Event::EventKind::Online && !listensOnly)
            {
                nextReason = now + Patience;
            }
            if (guard != nullptr)
            {
                guard->Heard(*event, view);
            }
        }
        if (guard != nullptr)
        {
            guard->GoOn(now >= Patience, view);
        }
        if (const bool isPressed = isKeyPressed.exchange(false); isPressed || now >= nextRefresh)
        {
            if (!view.Refresh(driver.Session().Devices()))
            {
                return;
            }
            nextRefresh = now + RefreshInterval;
        }
        if (!driver.Run(std::min(nextRefresh, end) - now))
        {
            return;
        }
    }
    if (reason.valid())
    {
        view.Complain("no device has answered. " + reason.get());
    }
}

std::unique_ptr<IWatchView> WatchCommand::MakeView(const Terminal& terminal,
                                                   CommandContext& context,
                                                   const SiteState* site)
{
    if (terminal.IsInteractive() && !context.Out().IsJson() && !context.Out().IsCsv())
    {
        return std::make_unique<LiveWatchView>(std::cout, terminal, context.Out(), selection, site, !listensOnly,
                                               [this, &messages = context.Messages()] {
                                                   isKeyPressed = true;
                                                   messages.Wake();
                                               });
    }
    return std::make_unique<PlainWatchView>(context.Out(), selection);
}
} // namespace Zent::Discovery::Console
