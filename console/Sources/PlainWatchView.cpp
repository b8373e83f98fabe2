#include "PlainWatchView.h"

namespace Zent::Discovery::Console
{
PlainWatchView::PlainWatchView(Output& output, const DeviceSelection& selection)
    : output(output)
    , selection(selection)
{
}

bool PlainWatchView::Show(const Device& device, const Device* /*before*/)
{
    return !selection.Accepts(device) || output.ShowNow(device);
}

void PlainWatchView::Refresh(const Inventory& /*inventory*/)
{
    // What was printed stays.
}

void PlainWatchView::Complain(const std::string& text)
{
    output.Complain(text);
}

void PlainWatchView::End(const Inventory& /*inventory*/)
{
    // The last line has been printed already.
}
} // namespace Zent::Discovery::Console
