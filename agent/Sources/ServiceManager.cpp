#include "ServiceManager.h"

#include "Log.h"

#include <algorithm>
#include <cstdint>
#include <systemd/sd-daemon.h>

namespace Zent::Discovery::Agent
{
namespace
{
constexpr std::chrono::milliseconds LongestInterval{1000};
}

ServiceManager::ServiceManager()
    : interval(LongestInterval)
{
    std::uint64_t microseconds = 0;
    if (sd_watchdog_enabled(0, &microseconds) > 0)
    {
        const auto third = std::chrono::microseconds(microseconds / 3);
        interval = std::min(interval, std::chrono::duration_cast<std::chrono::milliseconds>(third));
    }
}

void ServiceManager::TellReady()
{
    sd_notify(0, "READY=1");
}

void ServiceManager::TellStatus(const std::string& status)
{
    if (status != lastStatus)
    {
        lastStatus = status;
        sd_notify(0, ("STATUS=" + Log::Printable(status)).c_str());
    }
}

void ServiceManager::TellStopping()
{
    sd_notify(0, "STOPPING=1");
}

void ServiceManager::FeedWatchdog()
{
    sd_notify(0, "WATCHDOG=1");
}
} // namespace Zent::Discovery::Agent
