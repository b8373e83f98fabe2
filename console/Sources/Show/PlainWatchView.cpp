#include "Show/PlainWatchView.h"

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceList;
using Zent::Discovery::Inventory::DeviceSelection;

namespace Zent::Discovery::Console
{
PlainWatchView::PlainWatchView(Output& output, const DeviceSelection& selection)
    : output(output)
    , selection(selection)
{
}

bool PlainWatchView::Show(const Device& device, const Device* /*before*/)
{
    return !selection.Accepts(device, device.Message.Received) || output.ShowNow(device);
}

void PlainWatchView::Refresh(const DeviceList& /*inventory*/)
{
    // What was printed stays.
}

void PlainWatchView::Complain(const std::string& text)
{
    output.Complain(text);
}

void PlainWatchView::End(const DeviceList& /*inventory*/)
{
    // The last line has been printed already.
}
} // namespace Zent::Discovery::Console
