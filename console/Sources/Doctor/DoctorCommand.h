#pragma once

#include "Commands/ICommand.h"

#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
class Output;

namespace Doctor
{
struct Finding;
}

/// Looks for what keeps devices from being found.
class DoctorCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;

    bool HasCsv() const override { return false; }

    ExitStatus Run(CommandContext& context) override;

    /// What it tells scripts of a finding; text from outside may be in it.
    static std::string DocumentOf(const Doctor::Finding& finding);

private:
    bool NeedsSearch() const;
    void Show(const Doctor::Finding& finding, Output& output) const;

    std::vector<std::string> codes; // of the checks to make; empty for all
    bool isVerbose = false;
    bool onlyLists = false;
};
} // namespace Zent::Discovery::Console
