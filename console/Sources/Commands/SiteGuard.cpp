#include "Commands/SiteGuard.h"

#include "Show/IWatchView.h"

#include <utility>

using Zent::Discovery::Inventory::Event;

namespace Zent::Discovery::Console
{
SiteGuard::SiteGuard(SiteState& state, const Programs::SessionDriver& driver)
    : state(state)
    , driver(driver)
{
}

void SiteGuard::Heard(const Event& event)
{
    isCurrent = isCurrent && event.Subject == nullptr;
}

void SiteGuard::GoOn(bool hasTime, IWatchView& view)
{
    if (!std::exchange(isCurrent, true) || hasTime != std::exchange(hadTime, hasTime))
    {
        for (const EventText& each : state.Update(driver.Session().Devices(), hasTime))
        {
            view.Note(each);
        }
    }
}
} // namespace Zent::Discovery::Console
