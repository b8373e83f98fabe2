#pragma once

#include "Inventory/DeviceSelection.h"
#include "Show/IWatchView.h"
#include "Show/Output.h"

namespace Zent::Discovery::Console
{
/// Prints a line or a document for each message, for pipes and files, and says on the other stream what messages do not
/// tell: who is gone, and who contradicts whom.
class PlainWatchView final : public IWatchView
{
public:
    /// Both must outlive the view.
    PlainWatchView(Output& output, const Inventory::DeviceSelection& selection);

    bool Show(const Inventory::DeviceMessage& message) override;
    void Tell(const Inventory::Event& event) override;
    void Note(const EventText& text) override;
    bool Refresh(const Inventory::DeviceTable& devices) override;
    void Complain(const std::string& text) override;
    void End(const Inventory::DeviceTable& devices) override;

private:
    Output& output;
    const Inventory::DeviceSelection& selection;
};
} // namespace Zent::Discovery::Console
