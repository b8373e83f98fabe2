#include "Show/PlainWatchView.h"

#include "Show/EventText.h"

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Inventory::DeviceSelection;
using Zent::Discovery::Inventory::DeviceTable;
using Zent::Discovery::Inventory::Event;

namespace Zent::Discovery::Console
{
PlainWatchView::PlainWatchView(Output& output, const DeviceSelection& selection)
    : output(output)
    , selection(selection)
{
}

bool PlainWatchView::Show(const DeviceMessage& message)
{
    const Device device(message);
    return !selection.Accepts(device, message.Received) || output.ShowNow(device);
}

void PlainWatchView::Tell(const Event& event)
{
    using Kind = Event::EventKind;
    const bool isTold = event.Kind == Kind::Appeared || event.Kind == Kind::Changed || event.Kind == Kind::Left ||
                        event.Kind == Kind::Returned; // by the message
    if (isTold || (event.Subject != nullptr && !selection.Accepts(*event.Subject, event.Subject->Message.Received)))
    {
        return;
    }
    for (const EventText& each : EventText::Of(event))
    {
        output.Complain(each.Text);
    }
}

void PlainWatchView::Note(const EventText& text)
{
    output.Complain(text.Text);
}

bool PlainWatchView::Refresh(const DeviceTable& /*devices*/)
{
    return true; // what was printed stays
}

void PlainWatchView::Complain(const std::string& text)
{
    output.Complain(text);
}

void PlainWatchView::End(const DeviceTable& /*devices*/)
{
    // The last line has been printed already.
}
} // namespace Zent::Discovery::Console
