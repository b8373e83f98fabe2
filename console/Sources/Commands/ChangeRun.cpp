#include "Commands/ChangeRun.h"

#include "Commands/CommandContext.h"
#include "Programs/TimeText.h"
#include "Show/Output.h"
#include "Terminal/LineInput.h"
#include "Text/TerminalText.h"

#include <algorithm>
#include <cmath>
#include <utility>

using Zent::Discovery::Inventory::ChangeChecks;
using Zent::Discovery::Inventory::ChangeOptions;
using Zent::Discovery::Inventory::ChangeRefusal;
using Zent::Discovery::Inventory::ChangeReport;
using Zent::Discovery::Inventory::ChangeRequest;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceRow;
using Zent::Discovery::Inventory::Event;
using Zent::Discovery::Inventory::Journal;
using Zent::Discovery::Inventory::JournalEntry;
using Zent::Discovery::Inventory::Time;
using Zent::Discovery::Programs::TimeText;

namespace Zent::Discovery::Console
{
namespace
{
using Kind = ChangeRequest::ChangeKind;
using Verdict = ChangeReport::ChangeVerdict;
using Code = ChangeRefusal::RefusalCode;

constexpr Time StatusInterval{100};
constexpr Time LookTime{3000};
constexpr Time AskAgainAfter{300}; // a device that has not answered
constexpr Time ShortTime{1000};    // for one that a search has not found

bool IsSent(const ChangeReport& report)
{
    return report.Verdict && *report.Verdict != Verdict::NotSent;
}

bool HasComeTrue(const ChangeReport& report)
{
    return report.Verdict == Verdict::Applied || report.Verdict == Verdict::RebootNeeded;
}

void Refuse(ChangeReport& report, Code code, const std::string& text)
{
    report.Verdict = Verdict::NotSent;
    report.Refusal = {code, text};
}

std::string Seconds(Time time)
{
    return std::to_string(std::lround(std::ceil(std::chrono::duration<double>(time).count())));
}
} // namespace

ChangeRun::ChangeRun(CommandContext& context, const ChangeSettings& settings)
    : context(context)
    , settings(settings)
    , timeout(settings.TimeoutWith(context.Options()))
    , driver(context.Session(), context.Messages(), {.AskEvery = Time(0)}, [&context](const std::string& text) {
        context.Out().Complain(text);
    })
{
}

ChangeRun::~ChangeRun() = default;

bool ChangeRun::Look()
{
    if (settings.NoLook || context.Session().Interfaces().Addresses().empty())
    {
        return true;
    }
    hasLooked = true;
    Inventory::Session& session = driver.Session();
    session.StartSearch({.Wait = LookTime, .Sweep = false}, driver.Now());
    return Await([&session] { return session.SearchState()->IsOver; },
                 [this] { return "Looking who is there: " + std::to_string(Devices().Size()) + " devices"; });
}

ExitStatus ChangeRun::CarryOut(const std::vector<Wanted>& plan, const Manner& manner)
{
    Steps steps;
    for (const Wanted& wanted : plan)
    {
        steps.push_back({wanted, {.Id = 0, .Request = wanted.Request}});
    }
    bool isAllowed = CheckValues(steps);
    if (isAllowed)
    {
        if ((manner.Looks && !Look()) || !Acquaint(steps))
        {
            return ExitStatus::Interrupted;
        }
        isAllowed = Check(steps, manner);
    }
    if (!isAllowed)
    {
        Tell(steps);
        return ExitStatus::Usage;
    }
    if (settings.DryRun)
    {
        ShowPlan(steps);
        return ExitStatus::Success;
    }
    if (const ExitStatus answer = Ask(steps, manner); answer != ExitStatus::Success)
    {
        return answer;
    }
    isOnTrial = manner.Confirm.has_value();
    bool isInterrupted = !(manner.OneByOne ? ChangeOneByOne(steps) : Change(steps));
    const bool isApplied =
        std::ranges::all_of(steps, [](const Step& step) { return step.Report.Verdict == Verdict::Applied; });
    const bool stays = !manner.Confirm || (isApplied && !isInterrupted && IsConfirmed(*manner.Confirm));
    if (!stays)
    {
        isInterrupted = context.Messages().IsInterrupted();
        TakeBack(steps);
    }
    else if (std::exchange(isOnTrial, false))
    {
        EndEntries(steps);
    }
    Tell(steps);
    return isInterrupted                                                                       ? ExitStatus::Interrupted
           : isApplied && stays                                                                ? ExitStatus::Success
           : std::ranges::none_of(steps, [](const Step& step) { return IsSent(step.Report); }) ? ExitStatus::Usage
                                                                                               : ExitStatus::NoAnswer;
}

/// Asks those devices that nobody has heard yet: they may have missed a search, and without one nobody knows what they
/// have. False once the user has interrupted.
bool ChangeRun::Acquaint(const Steps& steps)
{
    const Time end = driver.Now() + (hasLooked ? std::min(timeout, ShortTime) : timeout);
    Time nextQuestion{0};
    const auto isOver = [&] {
        const bool isTime = driver.Now() >= nextQuestion;
        bool isAnyUnknown = false;
        for (const Step& step : steps)
        {
            if (step.Request.TargetIn(Devices()) != nullptr)
            {
                continue;
            }
            isAnyUnknown = true;
            if (isTime && step.Request.Kind != Kind::RenameAt)
            {
                driver.Ask(step.Request.Interface.MACAddress);
            }
            else if (isTime && context.CanReach(step.Request.Interface.IPAddress))
            {
                driver.Reach(step.Request.Interface.IPAddress);
            }
        }
        nextQuestion = isTime ? driver.Now() + AskAgainAfter : nextQuestion;
        return !isAnyUnknown || driver.Now() >= end;
    };
    return Await(isOver, [] { return std::string("Asking the devices that are to change"); });
}

/// False when something must not be sent whatever the devices are; then nothing is.
bool ChangeRun::CheckValues(Steps& steps) const
{
    for (Step& step : steps)
    {
        step.Report.Refusal = ChangeChecks::FindInValues(step.Request, OptionsFor(step));
    }
    return IsAllAllowed(steps);
}

/// Notes what the devices have now. False when something must not be sent; then nothing is.
bool ChangeRun::Check(Steps& steps, const Manner& manner) const
{
    std::vector<ChangeRequest> others;
    for (Step& step : steps)
    {
        ChangeReport& report = step.Report;
        if (const DeviceRow* const row = step.Request.TargetIn(Devices()))
        {
            report.Before = row->Latest;
        }
        if (!manner.OneByOne)
        {
            report.Refusal = ChangeChecks::Find(step.Request, OptionsFor(step), Devices(), others);
        }
        if (!report.Refusal && manner.Confirm && report.Before == nullptr)
        {
            report.Refusal =
                ChangeRefusal{Code::UnknownDevice, report.Subject() + " has not answered: nobody could take it back"};
        }
        others.push_back(step.Request);
    }
    return IsAllAllowed(steps);
}

/// False when one of them is refused; then the others are left out.
bool ChangeRun::IsAllAllowed(Steps& steps)
{
    if (std::ranges::none_of(steps, [](const Step& step) { return step.Report.Refusal.has_value(); }))
    {
        return true;
    }
    for (Step& step : steps)
    {
        step.Report.Verdict = Verdict::NotSent;
        if (!step.Report.Refusal)
        {
            Refuse(step.Report, Code::LeftOut, step.Report.Subject() + ": another change is refused");
        }
    }
    return false;
}

void ChangeRun::ShowPlan(const Steps& steps) const
{
    for (const Step& step : steps)
    {
        if (!context.Out().IsJson())
        {
            context.Out().PrintLine(TerminalText::Plain(step.Report.PlanText()));
            continue;
        }
        ChangeReport report = step.Report;
        Refuse(report, Code::DryRun, report.PlanText());
        context.Out().PrintLine(R"({"Change":)" + TerminalText::Json(report.ToJson()) + "}");
    }
}

/// Success when the user agrees, or need not be asked.
ExitStatus ChangeRun::Ask(const Steps& steps, const Manner& manner)
{
    if (!manner.Asks || settings.Yes || settings.Force)
    {
        return ExitStatus::Success;
    }
    Output& output = context.Out();
    if (!LineInput::IsSomebodyThere())
    {
        if (manner.NeedsAnswer)
        {
            output.Complain("there is no terminal to ask on; --yes says that it is to be done");
            return ExitStatus::Usage;
        }
        return ExitStatus::Success;
    }
    std::string question;
    for (const Step& step : steps)
    {
        question += TerminalText::Plain(step.Report.PlanText()) + "\n";
    }
    Input().Drop(); // before the question: who has seen it may answer at once
    output.Ask(question + "Send this? [y/N] ");
    std::optional<std::string> answer;
    const bool isAnswered = Await(
        [&] {
            answer = Input().Take();
            return answer || Input().HasEnded();
        },
        {});
    if (isAnswered && LineInput::IsYes(answer.value_or("")))
    {
        return ExitStatus::Success;
    }
    output.Complain("nothing was sent");
    return isAnswered ? ExitStatus::Usage : ExitStatus::Interrupted;
}

/// Sends them all and waits for the verdicts. False once the user has interrupted.
bool ChangeRun::Change(std::span<Step> steps)
{
    Inventory::Session& session = driver.Session();
    const auto stepOf = [&steps](std::int64_t change) {
        return std::ranges::find(steps, change, [](const Step& step) { return step.Report.Id; });
    };
    driver.OnRequest([&](std::int64_t change) { Note(*stepOf(change), *session.ChangeState(change)); });
    for (Step& step : steps)
    {
        step.Report.Id = session.StartChange(step.Request, OptionsFor(step), driver.Now());
    }
    std::size_t open = steps.size();
    const auto isOver = [&] {
        while (const std::optional<Event> event = session.NextEvent())
        {
            if (event->Outcome)
            {
                stepOf(event->Outcome->Id)->Report = *event->Outcome;
                --open;
            }
        }
        return open == 0;
    };
    const auto status = [&open] {
        return "Waiting for " + std::to_string(open) + (open == 1 ? " device" : " devices");
    };
    const bool isInterrupted = !Await(isOver, status);
    if (isInterrupted)
    {
        for (const Step& step : steps)
        {
            session.StopChange(step.Report.Id, driver.Now());
        }
        isOver();
    }
    if (!isOnTrial)
    {
        EndEntries(steps);
    }
    return !isInterrupted;
}

/// Up to the first that fails. False once the user has interrupted.
bool ChangeRun::ChangeOneByOne(Steps& steps)
{
    for (auto step = steps.begin(); step != steps.end(); ++step)
    {
        const bool isInterrupted = !Change({step, 1});
        if (isInterrupted || !HasComeTrue(step->Report))
        {
            for (auto left = step + 1; left != steps.end(); ++left)
            {
                Refuse(left->Report, Code::LeftOut,
                       left->Report.Subject() + (isInterrupted ? ": interrupted" : ": an earlier change has failed"));
            }
            return !isInterrupted;
        }
    }
    return true;
}

/// Keeps in the journal what is sent next.
void ChangeRun::Note(Step& step, const ChangeReport& report)
{
    if (step.Entry)
    {
        return; // the library did not take it the first time
    }
    JournalEntry& entry = step.Entry.emplace(JournalEntry::Of(report, TimeText::Utc(std::chrono::system_clock::now())));
    entry.Undoes = step.Undoes;
    if (step.Exchange != 0)
    {
        entry.Exchange = exchanges.try_emplace(step.Exchange, entry.Id()).first->second;
    }
    context.WriteJournal(Journal::BeginLine(entry));
}

void ChangeRun::EndEntries(std::span<const Step> steps)
{
    for (const Step& step : steps)
    {
        if (step.Entry)
        {
            context.WriteJournal(Journal::EndLine(*step.Entry, step.Report.VerdictName()));
        }
    }
}

/// Whether the user wants to keep what the devices have taken.
bool ChangeRun::IsConfirmed(std::chrono::milliseconds time)
{
    if (settings.Yes)
    {
        return true;
    }
    const bool isSomebodyThere = LineInput::IsSomebodyThere();
    const Time end = driver.Now() + time;
    bool isConfirmed = false;
    if (isSomebodyThere)
    {
        Input().Drop();
    }
    Await(
        [&] {
            isConfirmed = isSomebodyThere && Input().Take().has_value();
            return isConfirmed || driver.Now() >= end || (isSomebodyThere && Input().HasEnded());
        },
        [&] {
            return "The devices show the new settings. Enter keeps them; they are taken back in " +
                   Seconds(end - driver.Now()) + " s";
        });
    return isConfirmed;
}

/// Gives the devices what they had before, whatever the user wishes: a closed terminal tells so in several ways.
void ChangeRun::TakeBack(Steps& steps)
{
    isTidyingUp = true;
    isOnTrial = false;
    Steps back;
    std::vector<Step*> origins;
    for (auto step = steps.rbegin(); step != steps.rend(); ++step)
    {
        const std::optional<ChangeRequest> undo = step->Report.Undo();
        if (step->Entry && undo)
        {
            back.push_back({{*undo, step->Entry->Id()}, {.Id = 0, .Request = *undo}});
            origins.push_back(&*step);
        }
    }
    Change(back);
    for (std::size_t i = 0; i < back.size(); ++i)
    {
        origins[i]->TakenBack = back[i].Report;
    }
}

void ChangeRun::Tell(const Steps& steps) const
{
    std::vector<const Device*> changed;
    for (const Step& step : steps)
    {
        if (step.Report.Verdict == Verdict::Applied && !step.TakenBack)
        {
            const Device* const device = step.Report.After.get();
            std::erase_if(changed, [device](const Device* earlier) { return earlier->IsSameAs(*device); });
            changed.push_back(device);
        }
    }
    if (!changed.empty() && !context.Out().IsJson())
    {
        context.Out().Show(changed);
    }
    for (const Step& step : steps)
    {
        Tell(step);
    }
}

void ChangeRun::Tell(const Step& step) const
{
    Output& output = context.Out();
    std::string sentence = step.Report.ToString();
    std::string document = step.Report.ToJson();
    if (step.TakenBack)
    {
        const bool isBack = HasComeTrue(*step.TakenBack);
        sentence += (isBack ? "; taken back: " : "; NOT taken back: ") + step.TakenBack->ToString() +
                    (isBack ? "" : "; discovery-console undo tries again");
        document.insert(document.size() - 1, std::string(R"(,"TakenBack":")") + step.TakenBack->VerdictName() + '"');
    }
    if (output.IsJson())
    {
        output.PrintLine(R"({"Change":)" + TerminalText::Json(document) + "}");
    }
    if (step.Report.Verdict == Verdict::Applied && !step.TakenBack)
    {
        output.Conclude(TerminalText::Plain(sentence));
    }
    else
    {
        output.Complain(sentence);
    }
}

/// Lets the session go on until it is over. False once the user has interrupted.
bool ChangeRun::Await(const std::function<bool()>& isOver, const std::function<std::string()>& status)
{
    while (!isOver())
    {
        if (status)
        {
            context.Out().ShowStatus(status());
        }
        if (!driver.Run(StatusInterval))
        {
            if (!isTidyingUp)
            {
                return false;
            }
            context.Messages().ClearInterruption();
        }
    }
    return true;
}

LineInput& ChangeRun::Input()
{
    if (input == nullptr)
    {
        Programs::MessageQueue& messages = context.Messages();
        input = std::make_unique<LineInput>([&messages] { messages.Wake(); }, [&messages] { messages.Interrupt(); });
    }
    return *input;
}

ChangeOptions ChangeRun::OptionsFor(const Step& step) const
{
    return {.Look = std::nullopt,
            .Timeout = timeout,
            .RebootTimeout = settings.RebootTimeout,
            .Force = settings.Force || isTidyingUp, // a device may be silent just because of what it was given
            .GivesBack = !step.Undoes.empty()};
}
} // namespace Zent::Discovery::Console
