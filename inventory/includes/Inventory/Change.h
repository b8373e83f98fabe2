#pragma once

#include "Inventory/ChangeReport.h"
#include "Inventory/Time.h"

#include <cstdint>
#include <optional>

namespace Zent::Discovery::Inventory
{
class DeviceTable;
class Questions;

/// Changes one device and finds out whether it has: learns what the device has now, is checked, sends the request, and
/// asks the device until it shows the change or time is up. One thread at a time.
class Change final
{
public:
    /// How often the device is asked until the usual time is up, and later, while it starts anew.
    static constexpr Time AskEvery{300};
    static constexpr Time AskRebootingEvery{1000};

    /// A device that was silent for so long does not answer.
    static constexpr Time SilenceTime{1000};

    /// What a device has said no longer ago than this, it still is.
    static constexpr Time FreshTime{15000};

    /// How often the library is given the request until it takes it.
    static constexpr Time SendEvery{500};

    /// The request is in its normal form. Devices and questions must outlive the change.
    Change(std::int64_t id,
           ChangeRequest request,
           ChangeOptions options,
           const DeviceTable& devices,
           Questions& questions,
           Time now);

    /// Whether it is time to find out, with ChangeChecks, whether the request may be sent. isSearching says that a
    /// search goes on which tells more.
    bool IsReady(bool isSearching, Time now) const;

    /// Sends the request, unless something is wrong with it. Once only, and not before it IsReady, unless something is
    /// wrong.
    void Decide(std::optional<ChangeRefusal> refusal, Time now);

    /// A device has said something.
    void Heard(const std::shared_ptr<const Device>& device, Time now);

    /// Takes the answer to a wish; false when it is not one of this change.
    bool Answered(std::int64_t wish, std::int64_t value, Time now);

    void Advance(Time now);

    /// Ends it as it is.
    void Stop(Time now);

    /// Ends it because its request cannot be sent.
    void Fail(const std::string& reason, Time now);

    /// Whether it has passed the checks and not ended.
    bool IsUnderWay() const { return phase != Phase::Preparing && !IsOver(); }

    bool IsOver() const { return report.Verdict.has_value(); }

    const ChangeReport& Report() const { return report; }

    const ChangeOptions& Options() const { return options; }

    /// When to call Advance again, at the latest.
    Time NextTime(Time now) const;

private:
    enum class Phase
    {
        Preparing, // until it is known what the device has now
        Routing,   // until it is known whether there is a route to it
        Sending,   // until the library has taken the request
        Verifying
    };

    bool IsKnown(Time now) const;
    bool IsAnswering(Time now) const;
    bool MayNeedReboot() const;
    void Send(Time now);
    void Request();
    void Ask(Time now);
    void Conclude(Time now);
    void End(ChangeReport::ChangeVerdict verdict, Time now);
    void Refuse(ChangeRefusal::RefusalCode code, const std::string& text, Time now);

    const ChangeOptions options;
    const DeviceTable& devices;
    Questions& questions;
    const Time start;

    ChangeReport report;
    Phase phase = Phase::Preparing;
    Time deadline;                 // of the phase
    Time nextStep;                 // a question or a request
    Time sent{0};                  // when the library has taken the request
    std::optional<Time> lastHeard; // since then
    std::int64_t openWish = 0;     // the one whose answer the change waits for
    bool isSentAgain = false;
};
} // namespace Zent::Discovery::Inventory
