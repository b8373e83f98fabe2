#include "Commands/ChangeSettings.h"

#include "Commands/Arguments.h"
#include "Commands/ProgramOptions.h"
#include "Commands/SharedOptions.h"

namespace Zent::Discovery::Console
{
namespace
{
constexpr std::chrono::seconds UsualTimeout{3};
}

void ChangeSettings::AddTo(Arguments& arguments)
{
    arguments.AddFlag("--yes", Yes, "ask nothing: yes is the answer");
    arguments.AddFlag("--force", Force,
                      "go on though the device is unknown or another one has the name or the address; ask nothing");
    arguments.AddFlag("--dry-run", DryRun, "show what would be sent and what it would change; send nothing");
    arguments.AddSeconds("--timeout", Timeout,
                         "how long a device may take to show a change; 3 seconds without it; also --wait", 0.0);
    arguments.AddSeconds("--reboot-timeout", RebootTimeout,
                         "how long one may take that must start anew for it; 60 seconds without it", 0.0);
}

void ChangeSettings::AddWithLookTo(Arguments& arguments)
{
    AddTo(arguments);
    arguments.AddFlag("--no-look", NoLook,
                      "do not search for devices before, so that nobody knows which names and addresses are taken");
}

Arguments::Argument ChangeSettings::AddMAC(Arguments& arguments, std::string& target, const std::string& description)
{
    return arguments.Add("--mac", "MAC", target, description).MustPass(&SharedOptions::WrongWithMAC);
}

std::chrono::milliseconds ChangeSettings::TimeoutWith(const ProgramOptions& options) const
{
    return Timeout ? *Timeout : options.Wait.value_or(UsualTimeout);
}
} // namespace Zent::Discovery::Console
