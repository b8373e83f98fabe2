#include "Commands/ExitStatus.h"

namespace Zent::Discovery::Console
{
namespace
{
struct Meaning
{
    ExitStatus Status;
    const char* Text;
};

constexpr Meaning Meanings[] = {
    {ExitStatus::Success, "success; of a search: it is complete"},
    {ExitStatus::Failure, "the library or the system refused, or a file could not be used"},
    {ExitStatus::Usage,
     "wrong arguments, a file that holds something else than it should, or a change that was not sent"},
    {ExitStatus::NoAnswer,
     "no device has answered in time, or not as it should, as with a change, or no interface takes part"},
    {ExitStatus::Different, "the two results differ, or devices are not as the site file says"},
    {ExitStatus::Warnings, "the doctor has found something that affects some devices or hosts"},
    {ExitStatus::Incomplete, "devices were found, but the search ended before it was complete"},
    {ExitStatus::Errors, "the doctor has found something that keeps all devices from being found"},
    {ExitStatus::Interrupted, "interrupted; watch ends with 0 then"},
};
} // namespace

std::string ExitStatusTable()
{
    std::string table = "Exit status:\n";
    for (const Meaning& each : Meanings)
    {
        const std::string number = std::to_string(static_cast<int>(each.Status));
        table += "  " + number + std::string(6 - number.size(), ' ') + each.Text + "\n";
    }
    return table;
}
} // namespace Zent::Discovery::Console
