#pragma once

#include "Inventory/DeviceSelection.h"
#include "Show/IWatchView.h"
#include "Show/Output.h"

namespace Zent::Discovery::Console
{
/// Prints a line or a document for each message, for pipes and files.
class PlainWatchView final : public IWatchView
{
public:
    /// Both must outlive the view.
    PlainWatchView(Output& output, const Inventory::DeviceSelection& selection);

    bool Show(const Inventory::Device& device, const Inventory::Device* before) override;
    void Refresh(const Inventory::DeviceList& inventory) override;
    void Complain(const std::string& text) override;
    void End(const Inventory::DeviceList& inventory) override;

private:
    Output& output;
    const Inventory::DeviceSelection& selection;
};
} // namespace Zent::Discovery::Console
