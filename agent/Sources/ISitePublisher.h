#pragma once

#include "Fleet/Command.h"
#include "Fleet/DeviceRecord.h"
#include "Fleet/SiteEvent.h"
#include "Inventory/Time.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Zent::Discovery::Agent
{
/// What the table tells the world, whichever way it gets there. One thread.
class ISitePublisher
{
public:
    /// What comes the other way, on the thread that calls Advance.
    class IListener
    {
    public:
        virtual ~IListener() = default;

        virtual void TakeCommand(const Fleet::CommandMessage& message) = 0;

        /// A record that was asked for once BeReady was called; nothing when there is none that can be read.
        virtual void TakeUnclaimed(const std::string& id, const std::optional<Fleet::DeviceRecord>& record) = 0;
    };

    struct PublisherStatus
    {
        bool IsConnected = false;
        std::size_t Waiting = 0; // records
        std::string Text = {};   // for people
    };

    virtual ~ISitePublisher() = default;

    /// The record of a device from now on. What tells the same as what is there already is not sent.
    virtual void PublishRecord(const std::string& id, const Fleet::DeviceRecord& record) = 0;

    /// There is none from now on.
    virtual void RemoveRecord(const std::string& id) = 0;

    /// Lost when nobody can be reached at the moment.
    virtual void PublishEvent(const Fleet::SiteEvent& event) = 0;

    virtual void Reply(const Fleet::CommandMessage& message, const Fleet::Verdict& verdict) = 0;

    /// Whether a record of the device is there already, from an earlier start for instance.
    virtual bool HasRecord(const std::string& id) const = 0;

    /// Says that the table is whole: the site is ready, and records that it has not published may be out of date. The
    /// listener gets these, now and after each time the connection comes back.
    virtual void BeReady() = 0;

    /// Goes on with whatever has come or is due.
    virtual void Advance(Inventory::Time now) = 0;

    /// When to call Advance again, at the latest, if nothing comes before.
    virtual Inventory::Time NextTime(Inventory::Time now) const = 0;

    virtual PublisherStatus Status() const = 0;

    /// Says goodbye.
    virtual void Close() = 0;
};
} // namespace Zent::Discovery::Agent
