#pragma once

#include "Commands/ICommand.h"

namespace Zent::Discovery::Console
{
/// Prints the library's text of a result code.
class ErrorCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;

    bool HasCsv() const override { return false; }

    ExitStatus Run(CommandContext& context) override;

private:
    int code = 0;
};
} // namespace Zent::Discovery::Console
