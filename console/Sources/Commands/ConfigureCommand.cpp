#include "Commands/ConfigureCommand.h"

#include "Commands/Arguments.h"
#include "Commands/CommandContext.h"
#include "Commands/InterfaceFile.h"

#include <algorithm>
#include <iterator>

using Zent::Discovery::Inventory::ChangeRequest;

namespace Zent::Discovery::Console
{
CLI::App& ConfigureCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "configure",
                        "give network interfaces of devices new settings and see that they take them");
    arguments.AddPositional("FILE", file, "a JSON array of interfaces");
    arguments.AddSeconds("--confirm", confirm,
                         "take the settings back when a device does not show them, on Ctrl-C, and when nobody "
                         "presses Enter in so many seconds; --yes confirms when all show them",
                         1.0);
    settings.AddWithLookTo(arguments);
    return arguments.Command();
}

ExitStatus ConfigureCommand::Run(CommandContext& context)
{
    std::vector<ChangeRun::Wanted> plan;
    std::ranges::transform(InterfaceFile::Read(file), std::back_inserter(plan),
                           [](const ChangeRequest& each) { return ChangeRun::Wanted{each}; });
    if (!context.CanBroadcast())
    {
        return ExitStatus::NoAnswer;
    }
    return ChangeRun(context, settings).CarryOut(plan, {.Looks = true, .Asks = plan.size() > 1, .Confirm = confirm});
}
} // namespace Zent::Discovery::Console
