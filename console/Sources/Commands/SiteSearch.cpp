#include "Commands/SiteSearch.h"

#include "Commands/CommandContext.h"
#include "Commands/SearchProgress.h"
#include "Show/Output.h"

using namespace std::chrono_literals;

namespace Zent::Discovery::Console
{
namespace
{
constexpr std::chrono::milliseconds StatusInterval{100};
constexpr std::chrono::milliseconds UsualWait{10000};
} // namespace

SiteSearch::SiteSearch(CommandContext& context)
    : context(context)
    , driver(context.Session(),
             context.Messages(),
             {.AskEvery = Inventory::Time(0)},
             [&output = context.Out()](const std::string& text) { output.Complain(text); })
{
}

ExitStatus SiteSearch::Run()
{
    if (!context.CanBroadcast())
    {
        return ExitStatus::NoAnswer;
    }
    Inventory::SearchOptions options;
    options.Wait = context.Options().Wait.value_or(UsualWait);
    options.Networks = context.Session().Interfaces().Addresses();
    driver.Session().StartSearch(options, driver.Now());
    while (!driver.Session().SearchState()->IsOver)
    {
        context.Out().ShowStatus(SearchProgress::Text(driver, options.Wait));
        if (!driver.Run(StatusInterval))
        {
            return ExitStatus::Interrupted;
        }
    }
    if (driver.Session().Devices().Size() == 0)
    {
        SearchProgress::ComplainAboutSilence(driver, context);
        return ExitStatus::NoAnswer;
    }
    if (!driver.Session().SearchState()->Complete)
    {
        context.Out().Complain("the search is incomplete: there may be more devices; --wait gives it more time");
        return ExitStatus::Incomplete;
    }
    return ExitStatus::Success;
}

std::vector<const Inventory::Device*> SiteSearch::Devices() const
{
    return driver.Session().Devices().Here();
}
} // namespace Zent::Discovery::Console
