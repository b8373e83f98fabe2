#include "Inventory/Change.h"

#include "Inventory/DeviceTable.h"
#include "Inventory/Questions.h"

#include <algorithm>
#include <utility>

namespace Zent::Discovery::Inventory
{
namespace
{
using Kind = ChangeRequest::ChangeKind;
using Verdict = ChangeReport::ChangeVerdict;

constexpr Time UsualRebootTimeout{60000};
} // namespace

Change::Change(std::int64_t id,
               ChangeRequest request,
               ChangeOptions options,
               const DeviceTable& devices,
               Questions& questions,
               Time now)
    : options(std::move(options))
    , devices(devices)
    , questions(questions)
    , start(now)
    , report{.Id = id, .Request = std::move(request)}
    , deadline(now + this->options.Timeout)
    , nextStep(now)
{
}

bool Change::IsReady(bool isSearching, Time now) const
{
    const bool isLooking = options.Look && isSearching && now < start + options.Look->Wait;
    return phase == Phase::Preparing && !IsOver() && !isLooking && (IsKnown(now) || now >= deadline);
}

void Change::Decide(std::optional<ChangeRefusal> refusal, Time now)
{
    if (refusal)
    {
        report.Refusal = std::move(refusal);
        End(Verdict::NotSent, now);
        return;
    }
    if (const DeviceRow* const row = report.Request.TargetIn(devices))
    {
        report.Before = row->Latest;
        Device::Interface& wanted = report.Request.Interface;
        const Device::Interface* const present = row->Latest->FindMAC(wanted.MACAddress);
        wanted.FriendlyName =
            wanted.FriendlyName.empty() && present != nullptr ? present->FriendlyName : wanted.FriendlyName;
    }
    deadline = now + options.Timeout;
    Send(now);
}

void Change::Heard(const std::shared_ptr<const Device>& device, Time now)
{
    if (phase != Phase::Verifying || IsOver() || !report.Request.IsAbout(*device))
    {
        return;
    }
    if (device->Message.Kind == DeviceMessage::MessageKind::Bye)
    {
        lastHeard.reset(); // what it says now need not be what it is going to be
        return;
    }
    const bool wasSilent = now >= sent + SilenceTime && !IsAnswering(now);
    report.After = device;
    lastHeard = now;
    if (report.Request.IsShownBy(*device))
    {
        End(Verdict::Applied, now);
    }
    else if (options.GivesBack && wasSilent && !std::exchange(isSentAgain, true))
    {
        // It may have been starting anew when it was told: what it was told before that still holds.
        deadline = now + options.Timeout;
        Send(now);
    }
}

bool Change::Answered(std::int64_t wish, std::int64_t value, Time now)
{
    if (wish != openWish)
    {
        return false;
    }
    openWish = 0;
    if (phase == Phase::Routing && value == 1)
    {
        phase = Phase::Sending;
        Request();
    }
    else if (phase == Phase::Routing)
    {
        Refuse(ChangeRefusal::RefusalCode::NoRoute, "there is no route to " + report.Request.Interface.IPAddress, now);
    }
    else if (phase == Phase::Sending && value == 1)
    {
        phase = Phase::Verifying;
        sent = now;
        deadline = now + options.Timeout;
        nextStep = now;
        Advance(now);
    }
    return true;
}

void Change::Advance(Time now)
{
    if (IsOver())
    {
        return;
    }
    const bool isTimeUp = now >= deadline;
    switch (phase)
    {
    case Phase::Preparing:
        if (!isTimeUp && !IsKnown(now))
        {
            Ask(now);
        }
        break;
    case Phase::Routing:
    case Phase::Sending:
        if (isTimeUp)
        {
            Fail("the library has not taken the request", now);
        }
        else if (openWish == 0 && now >= nextStep)
        {
            Send(now);
        }
        break;
    case Phase::Verifying:
        if (isTimeUp)
        {
            Conclude(now);
        }
        if (!IsOver())
        {
            Ask(now);
        }
        break;
    }
}

void Change::Stop(Time now)
{
    if (phase == Phase::Verifying && !IsOver())
    {
        End(Verdict::NoAnswer, now);
    }
    else if (!IsOver())
    {
        Refuse(ChangeRefusal::RefusalCode::LeftOut, report.Subject() + " was sent nothing before it was stopped", now);
    }
}

void Change::Fail(const std::string& reason, Time now)
{
    Refuse(ChangeRefusal::RefusalCode::SendFailed, reason, now);
}

Time Change::NextTime(Time now) const
{
    const bool isAsking = phase == Phase::Verifying || (phase == Phase::Preparing && !IsKnown(now));
    const bool isSending = phase == Phase::Sending && openWish == 0;
    Time next = deadline;
    if (isAsking || isSending)
    {
        next = std::min(next, isAsking && nextStep <= now ? questions.NextTime(now) : nextStep);
    }
    if (phase == Phase::Preparing && options.Look)
    {
        // The end of a search, which may come sooner, has a time of its own.
        next = now < deadline ? next : start + options.Look->Wait;
    }
    return std::max(now, next);
}

/// Whether the table has the device as it is now.
bool Change::IsKnown(Time now) const
{
    const DeviceRow* const row = report.Request.TargetIn(devices);
    return row != nullptr && row->IsHere() && now <= row->LastSeen + FreshTime;
}

/// Loses no more than a few answers.
bool Change::IsAnswering(Time now) const
{
    return lastHeard && now < *lastHeard + SilenceTime;
}

bool Change::MayNeedReboot() const
{
    const Device* const device = report.After ? report.After.get() : report.Before.get();
    return device != nullptr && report.Request.NeedsReboot(*device);
}

void Change::Send(Time now)
{
    nextStep = now + SendEvery;
    if (report.Request.Kind == Kind::RenameAt)
    {
        phase = Phase::Routing;
        openWish = questions.FindRoute(report.Request.Interface.IPAddress);
        return;
    }
    phase = Phase::Sending;
    Request();
}

void Change::Request()
{
    const ChangeRequest& request = report.Request;
    switch (request.Kind)
    {
    case Kind::Rename:
        openWish =
            questions.Request({Wish::WishKind::Rename, 0, request.Interface.MACAddress, request.HostName, report.Id});
        break;
    case Kind::RenameAt:
        openWish =
            questions.Request({Wish::WishKind::RenameAt, 0, request.Interface.IPAddress, request.HostName, report.Id});
        break;
    case Kind::Configure:
        openWish = questions.Request(
            {Wish::WishKind::Configure, 0, request.Interface.MACAddress, request.ToNicConfigs(), report.Id});
        break;
    }
}

/// Asks the device when it is time to and nothing else forbids it.
void Change::Ask(Time now)
{
    const Device::Interface& interface = report.Request.Interface;
    if (now < nextStep)
    {
        return;
    }
    if (report.Request.Kind != Kind::RenameAt && questions.CanAskMAC(now))
    {
        questions.AskMAC(interface.MACAddress, now);
    }
    else if (report.Request.Kind == Kind::RenameAt && questions.CanAskIP(now))
    {
        openWish = questions.AskIP(interface.IPAddress, now);
    }
    else
    {
        return;
    }
    const bool isRebooting = phase == Phase::Verifying && now >= sent + options.Timeout;
    nextStep = now + (isRebooting ? AskRebootingEvery : AskEvery);
}

void Change::Conclude(Time now)
{
    const bool isAnswering = IsAnswering(now);
    if (!MayNeedReboot())
    {
        End(isAnswering ? Verdict::Refused : Verdict::NoAnswer, now);
        return;
    }
    const Time patience = options.RebootTimeout.value_or(isAnswering ? Time{0} : UsualRebootTimeout);
    if (now < sent + patience)
    {
        deadline = sent + patience;
    }
    else
    {
        // One that has been silent since it was to give back its settings need not have heard of that.
        End(options.GivesBack && report.After == nullptr ? Verdict::NoAnswer : Verdict::RebootNeeded, now);
    }
}

void Change::End(Verdict verdict, Time now)
{
    report.Verdict = verdict;
    report.Elapsed = verdict == Verdict::NotSent ? Time{0} : now - sent;
    questions.Withdraw(std::exchange(openWish, 0));
}

void Change::Refuse(ChangeRefusal::RefusalCode code, const std::string& text, Time now)
{
    report.Refusal = {code, text};
    End(Verdict::NotSent, now);
}
} // namespace Zent::Discovery::Inventory
