#include "Commands/SiteGuard.h"

#include "Commands/CommandContext.h"
#include "Programs/TimeText.h"
#include "Show/IWatchView.h"

#include <algorithm>
#include <utility>

using Zent::Discovery::Inventory::ChangeReport;
using Zent::Discovery::Inventory::Event;
using Zent::Discovery::Inventory::Journal;
using Zent::Discovery::Inventory::JournalEntry;
using Zent::Discovery::Inventory::SitePlan;
using Zent::Discovery::Inventory::Time;
using Zent::Discovery::Programs::TimeText;

namespace Zent::Discovery::Console
{
namespace
{
constexpr Time LookInterval{1000};  // at devices that wait for a repair
constexpr Time AgainAfter{10000};   // somebody else may want another name, and goes on wanting it
constexpr Time FailedAfter{300000}; // the device refuses, or takes it when it starts anew
} // namespace

SiteGuard::SiteGuard(SiteState& state, bool repairsNames, CommandContext& context, Programs::SessionDriver& driver)
    : state(state)
    , repairsNames(repairsNames)
    , context(context)
    , driver(driver)
{
    driver.OnRequest([this](std::int64_t id) {
        if (id == change && !entry) // the library may not take it the first time
        {
            Note(*this->driver.Session().ChangeState(id));
        }
    });
}

void SiteGuard::Heard(const Event& event, IWatchView& view)
{
    isCurrent = isCurrent && event.Subject == nullptr;
    if (!event.Outcome || event.Outcome->Id != change)
    {
        return;
    }
    const ChangeReport& report = *event.Outcome;
    const bool isDone = report.Verdict == ChangeReport::ChangeVerdict::Applied;
    view.Note({"repair: " + report.ToString(), isDone ? Style::Appeared : Style::Left});
    if (entry)
    {
        context.WriteJournal(Journal::EndLine(*entry, report.VerdictName()));
        // Who stepped aside is the last to take a name, and who did not exchanges none.
        if (isTemporary ? !isDone : exchange.ends_with(entry->Subject()))
        {
            exchange.clear();
        }
    }
    entry.reset();
    change.reset();
    const Time pause = !isDone ? FailedAfter : isTemporary ? Time(0) : AgainAfter;
    notBefore.insert_or_assign(report.Request.Interface.MACAddress, driver.Now() + pause);
}

void SiteGuard::GoOn(bool hasTime, IWatchView& view)
{
    if (!std::exchange(isCurrent, true) || hasTime != std::exchange(hadTime, hasTime))
    {
        for (const EventText& each : state.Update(driver.Session().Devices(), hasTime))
        {
            view.Note(each);
        }
    }
    if (repairsNames && hasTime && !change && driver.Now() >= nextRepair)
    {
        Repair(view);
        nextRepair = driver.Now() + LookInterval;
    }
}

void SiteGuard::Close(IWatchView& view)
{
    if (change)
    {
        driver.Session().StopChange(*change, driver.Now());
        while (const std::optional<Event> event = driver.Session().NextEvent())
        {
            Heard(*event, view);
        }
    }
}

void SiteGuard::Repair(IWatchView& view)
{
    const std::vector<const Inventory::Device*> devices = driver.Session().Devices().Here();
    const SitePlan plan = SitePlan::For(state.Site(), devices, {.What = SitePlan::Scope::Names});
    for (const SitePlan::Obstacle& obstacle : plan.Obstacles)
    {
        const std::string text = "no repair: " + obstacle.Refusal.ToString();
        if (told.insert(text).second)
        {
            view.Note({text, Style::Left});
        }
    }
    const auto isDue = [this](const SitePlan::Step& step) {
        const auto time = notBefore.find(step.Request.Interface.MACAddress);
        return time == notBefore.end() || driver.Now() >= time->second;
    };
    const auto next = std::ranges::find_if(plan.Steps, isDue);
    if (next != plan.Steps.end())
    {
        isTemporary = next->IsTemporary;
        change = driver.Session().StartChange(next->Request, {.Look = std::nullopt}, driver.Now());
        nextRepair = driver.Now();
    }
}

/// Keeps in the journal what is sent next.
void SiteGuard::Note(const ChangeReport& report)
{
    entry = JournalEntry::Of(report, TimeText::Utc(std::chrono::system_clock::now()));
    exchange = isTemporary ? entry->Id() : exchange;
    entry->Exchange = exchange;
    context.WriteJournal(Journal::BeginLine(*entry));
}
} // namespace Zent::Discovery::Console
