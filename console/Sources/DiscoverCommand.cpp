#include "DiscoverCommand.h"

#include "DeviceReader.h"
#include "DeviceTable.h"
#include "Output.h"
#include "ServerSession.h"

#include <string>
#include <utility>

namespace Zent::Discovery::Console
{
DiscoverCommand::DiscoverCommand(std::chrono::milliseconds wait, std::size_t expectedDevices, std::string logFile)
    : wait(wait)
    , expectedDevices(expectedDevices)
    , logFile(std::move(logFile))
{
}

ExitStatus DiscoverCommand::Run(ServerSession& session, Output& output)
{
    session.Discover();
    DeviceTable table;
    DeviceReader reader(session.Messages(), output, wait);
    while (std::optional<Device> device = reader.Next())
    {
        table.Add(std::move(*device));
        if (table.Devices().size() == expectedDevices)
        {
            break;
        }
    }
    if (!table.Devices().empty())
    {
        output.Show(table);
    }
    if (reader.IsInterrupted())
    {
        return ExitStatus::Interrupted;
    }
    if (table.Devices().empty())
    {
        output.Complain("no device found; see the log " + logFile);
        return ExitStatus::NoAnswer;
    }
    if (table.Devices().size() < expectedDevices)
    {
        output.Complain("only " + std::to_string(table.Devices().size()) + " of " + std::to_string(expectedDevices) +
                        " devices found");
        return ExitStatus::NoAnswer;
    }
    return ExitStatus::Success;
}
} // namespace Zent::Discovery::Console
