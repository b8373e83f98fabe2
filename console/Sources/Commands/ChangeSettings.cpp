#include "Commands/ChangeSettings.h"

#include "Commands/ProgramOptions.h"
#include "Commands/SharedOptions.h"

#include <CLI/CLI.hpp>

namespace Zent::Discovery::Console
{
namespace
{
constexpr std::chrono::seconds UsualTimeout{3};
}

void ChangeSettings::AddTo(CLI::App& command)
{
    command.add_flag("--yes", Yes, "ask nothing: yes is the answer");
    command.add_flag("--force", Force,
                     "go on though the device is unknown or another one has the name or the address; ask nothing");
    command.add_flag("--dry-run", DryRun, "show what would be sent and what it would change; send nothing");
    SharedOptions::AddSeconds(command, "--timeout", Timeout,
                              "how long a device may take to show a change; 3 seconds without it; also --wait", 0.0);
    SharedOptions::AddSeconds(command, "--reboot-timeout", RebootTimeout,
                              "how long one may take that must start anew for it; 60 seconds without it", 0.0);
}

void ChangeSettings::AddWithLookTo(CLI::App& command)
{
    AddTo(command);
    command.add_flag("--no-look", NoLook,
                     "do not search for devices before, so that nobody knows which names and addresses are taken");
}

CLI::Option& ChangeSettings::AddMAC(CLI::App& command, std::string& target, const std::string& description)
{
    return *command.add_option("--mac", target, description)->type_name("MAC")->check(SharedOptions::MACAddress());
}

std::chrono::milliseconds ChangeSettings::TimeoutWith(const ProgramOptions& options) const
{
    return Timeout ? *Timeout : options.Wait.value_or(UsualTimeout);
}
} // namespace Zent::Discovery::Console
