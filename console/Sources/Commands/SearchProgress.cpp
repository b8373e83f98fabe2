#include "Commands/SearchProgress.h"

#include "Commands/CommandContext.h"
#include "Doctor/Examination.h"
#include "Programs/SessionDriver.h"
#include "Show/Output.h"

#include <cstdio>

using Zent::Discovery::Programs::SessionDriver;

namespace Zent::Discovery::Console
{
namespace
{
using Seconds = std::chrono::duration<double>;
}

std::string SearchProgress::Text(const SessionDriver& driver, std::chrono::milliseconds wait)
{
    char text[64];
    const int length = std::snprintf(text, sizeof(text), "Waiting for answers: %.1f of %g s, round %zu, ",
                                     Seconds(driver.Now()).count(), Seconds(wait).count(),
                                     driver.Session().SearchState()->Rounds.size());
    return std::string(text, static_cast<std::size_t>(length)) + Counted(driver.Session().Devices().Size());
}

void SearchProgress::ComplainAboutSilence(const SessionDriver& driver, CommandContext& context)
{
    context.Out().Complain("no device found. " +
                           Doctor::Examination::ReasonForSilence(context.Options(), Seconds(driver.Now()).count()) +
                           " See the log " + context.Options().Session.LogFile);
}

std::string SearchProgress::Counted(std::size_t count)
{
    return std::to_string(count) + (count == 1 ? " device" : " devices");
}
} // namespace Zent::Discovery::Console
