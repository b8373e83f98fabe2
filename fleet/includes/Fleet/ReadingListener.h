#pragma once

#include "Fleet/DeviceRecord.h"
#include "Fleet/SiteEvent.h"

#include <string>

namespace Zent::Discovery::Fleet
{
class SiteReading;

/// Gets what a reading finds, as it comes, on the thread that feeds the reading. Does nothing with what it does not
/// care for.
class ReadingListener
{
public:
    virtual ~ReadingListener() = default;

    /// The site is new, or its state or its text has become another one.
    virtual void TakeSite(const SiteReading& /*site*/) {}

    /// The broker has nothing of the site any more; nothing that was taken of it counts.
    virtual void TakeForgotten(const std::string& /*site*/) {}

    /// The record of a device is new or another one. id is the device's.
    virtual void TakeRecord(const std::string& /*site*/, const std::string& /*id*/, const DeviceRecord& /*record*/) {}

    /// There is none any more.
    virtual void TakeRemoval(const std::string& /*site*/, const std::string& /*id*/) {}

    /// Something has just happened.
    virtual void TakeEvent(const SiteEvent& /*event*/) {}
};
} // namespace Zent::Discovery::Fleet
