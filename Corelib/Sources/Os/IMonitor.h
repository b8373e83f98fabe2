#pragma once

namespace Nfx::Os
{
/// One lock; what is in it is the platform's business.
class MonitorRecord;

/// Locks within the process. A lock knows no owner: entering it twice blocks, and who exits it is not checked.
/// A thread that waits for a lock cannot be interrupted.
class IMonitor
{
public:
    virtual ~IMonitor() = default;

    /// Frees a lock that nobody holds or waits for.
    virtual void Close(MonitorRecord* monitor) = 0;

    /// Null when the platform has no lock to give.
    virtual MonitorRecord* Create() = 0;

    /// Waits without limit.
    virtual void Enter(MonitorRecord* monitor) = 0;

    virtual void Exit(MonitorRecord* monitor) = 0;
};
} // namespace Nfx::Os
