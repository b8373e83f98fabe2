#pragma once

#include <chrono>
#include <string>

namespace Zent::Discovery::Agent
{
/// Tells the service manager how the agent is doing; nobody when there is none. One thread.
class ServiceManager final
{
public:
    ServiceManager();

    void TellReady();

    /// Only what differs is told.
    void TellStatus(const std::string& status);

    void TellStopping();

    /// That the thread which does the work goes on.
    void FeedWatchdog();

    /// How often to do so, and to tell the status.
    std::chrono::milliseconds ReportInterval() const { return interval; }

private:
    std::chrono::milliseconds interval;
    std::string lastStatus;
};
} // namespace Zent::Discovery::Agent
