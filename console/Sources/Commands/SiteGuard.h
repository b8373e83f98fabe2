#pragma once

#include "Inventory/Event.h"
#include "Programs/SessionDriver.h"
#include "Show/SiteState.h"

namespace Zent::Discovery::Console
{
class IWatchView;

/// Holds devices that are watched against a site file, and tells how they differ.
class SiteGuard final
{
public:
    /// Both must outlive the object.
    SiteGuard(SiteState& state, const Programs::SessionDriver& driver);

    /// Something has happened in the session.
    void Heard(const Inventory::Event& event);

    /// Tells what has become known. hasTime is false as long as devices may not have answered yet.
    void GoOn(bool hasTime, IWatchView& view);

private:
    SiteState& state;
    const Programs::SessionDriver& driver;
    bool isCurrent = false; // nothing has happened since the last look
    bool hadTime = false;
};
} // namespace Zent::Discovery::Console
