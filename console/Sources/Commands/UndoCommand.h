#pragma once

#include "Commands/ChangeSettings.h"
#include "Commands/ICommand.h"
#include "Inventory/Journal.h"

#include <string>

namespace Zent::Discovery::Console
{
/// Takes back what the journal knows of.
class UndoCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;
    ExitStatus Run(CommandContext& context) override;

private:
    static void List(CommandContext& context, const Inventory::Journal& journal);
    static ExitStatus Keep(CommandContext& context, const Inventory::Journal& journal);

    ChangeSettings settings;
    std::string macAddress;
    bool lists = false;
    bool keeps = false;
};
} // namespace Zent::Discovery::Console
