#pragma once

namespace Nfx::Os
{
class IHostMemory;
class IMonitor;

/// The services of the platform: every platform call of the framework goes through one of them.
/// The services have no state that a caller could see and may be called from any thread.
class IOs
{
public:
    virtual IHostMemory& HostMemory() = 0;
    virtual IMonitor& Monitor() = 0;

protected:
    IOs() = default;
    virtual ~IOs() = default; // lives as long as the process: threads may still run while it exits
    IOs(const IOs&) = delete;
    IOs& operator=(const IOs&) = delete;
};

/// The services of the platform that this build is for.
IOs& Platform();
} // namespace Nfx::Os
