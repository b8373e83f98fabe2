#pragma once

#include "Inventory/Event.h"
#include "Show/EventText.h"

#include <string>

namespace Zent::Discovery::Inventory
{
class DeviceTable;
}

namespace Zent::Discovery::Console
{
/// Shows what devices say, and what has become of them, to whoever watches. Main thread only.
class IWatchView
{
public:
    virtual ~IWatchView() = default;

    /// A message has come. False when nobody reads any more.
    /// @throws std::invalid_argument when it is none of the library's.
    virtual bool Show(const Inventory::DeviceMessage& message) = 0;

    /// Something has happened.
    virtual void Tell(const Inventory::Event& event) = 0;

    /// Something else has become known; the text may hold text from outside.
    virtual void Note(const EventText& text) = 0;

    /// Called several times a second, and when the user has pressed a key, with all that is known. False when the user
    /// wants no more.
    virtual bool Refresh(const Inventory::DeviceTable& devices) = 0;

    /// The text may hold text from outside.
    virtual void Complain(const std::string& text) = 0;

    /// Nothing will come any more.
    virtual void End(const Inventory::DeviceTable& devices) = 0;
};
} // namespace Zent::Discovery::Console
