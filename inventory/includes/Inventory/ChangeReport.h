#pragma once

#include "Inventory/ChangeChecks.h"
#include "Inventory/ChangeRequest.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace Zent::Discovery::Inventory
{
/// What a change has come to, at its end or so far.
struct ChangeReport
{
    enum class ChangeVerdict
    {
        Applied,      // the device shows it
        RebootNeeded, // it shows it not, or is silent, and has said that it takes such a change when it starts anew
        Refused,      // it answers, and shows it not
        NoAnswer,     // it does not answer
        NotSent       // nothing was sent, for the reason of the refusal
    };

    std::int64_t Id;                                // of the change in its session
    ChangeRequest Request;                          // in its normal form
    std::optional<ChangeVerdict> Verdict = {};      // nothing until it has ended
    std::optional<ChangeRefusal> Refusal = {};      // of NotSent
    Time Elapsed{0};                                // from the request to the verdict
    std::shared_ptr<const Device> Before = nullptr; // as the device was when it was sent; null when that is unknown
    std::shared_ptr<const Device> After = nullptr;  // as it answered last since then; null when it has not

    /// Such as reboot-needed; empty until it has ended.
    const char* VerdictName() const;

    /// Of the interface that the change is about; empty when it is unknown.
    std::string MACAddress() const;

    /// That address, or the IP address of the request when it is unknown.
    std::string Subject() const;

    /// The request that gives back what the device had; nothing when that is unknown, or nothing was sent. To be
    /// started with GivesBack.
    std::optional<ChangeRequest> Undo() const;

    /// For people, before it is sent: 02:00:00:00:00:01 (press-4): the name "press-5" instead of the name "press-4"
    std::string PlanText() const;

    /// {"MACAddress":"..","Verdict":"applied","Seconds":0.4,"Before":{..},"After":{..}}; what is unknown is left out.
    /// One that was not sent has "Code" and "Text" in the place of the seconds, one at a device whose MAC address is
    /// unknown "IPAddress".
    std::string ToJson() const;

    /// For people: 00:1A:2B:3C:4D:5E has taken the name "press-4" (applied)
    std::string ToString() const;
};
} // namespace Zent::Discovery::Inventory
