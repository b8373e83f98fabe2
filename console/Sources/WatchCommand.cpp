#include "WatchCommand.h"

#include "DeviceReader.h"
#include "Output.h"
#include "ServerSession.h"

namespace Zent::Discovery::Console
{
WatchCommand::WatchCommand(std::optional<std::chrono::milliseconds> time)
    : time(time)
{
}

ExitStatus WatchCommand::Run(ServerSession& session, Output& output)
{
    DeviceReader reader(session.Messages(), output, time);
    while (const std::optional<Device> device = reader.Next())
    {
        if (!output.ShowNow(*device))
        {
            return ExitStatus::Failure;
        }
    }
    return ExitStatus::Success; // interrupting is how to end it
}
} // namespace Zent::Discovery::Console
