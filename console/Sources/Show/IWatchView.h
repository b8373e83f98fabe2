#pragma once

#include "Inventory/Device.h"
#include "Inventory/DeviceList.h"

#include <string>

namespace Zent::Discovery::Console
{
/// Shows what devices say to whoever watches.
class IWatchView
{
public:
    virtual ~IWatchView() = default;

    /// A message has come; before is what was known of the device, null when nothing was.
    /// False when nobody reads any more.
    virtual bool Show(const Inventory::Device& device, const Inventory::Device* before) = 0;

    /// Called several times a second with all that is known.
    virtual void Refresh(const Inventory::DeviceList& inventory) = 0;

    /// The text may hold text from outside.
    virtual void Complain(const std::string& text) = 0;

    /// Nothing will come any more.
    virtual void End(const Inventory::DeviceList& inventory) = 0;
};
} // namespace Zent::Discovery::Console
