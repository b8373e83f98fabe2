#pragma once

#include "DeviceSelection.h"
#include "IWatchView.h"
#include "Output.h"

namespace Zent::Discovery::Console
{
/// Prints a line or a document for each message, for pipes and files.
class PlainWatchView final : public IWatchView
{
public:
    /// Both must outlive the view.
    PlainWatchView(Output& output, const DeviceSelection& selection);

    bool Show(const Device& device, const Device* before) override;
    void Refresh(const Inventory& inventory) override;
    void Complain(const std::string& text) override;
    void End(const Inventory& inventory) override;

private:
    Output& output;
    const DeviceSelection& selection;
};
} // namespace Zent::Discovery::Console
