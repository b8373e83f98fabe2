#pragma once

#include "Commands/ICommand.h"
#include "Support/ZipArchive.h"

#include <optional>
#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// Packs what helps to understand what is wrong at a user's, without telling whose it is.
class SupportBundleCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;

    bool HasCsv() const override { return false; }

    ExitStatus Run(CommandContext& context) override;

private:
    std::string MapPath() const;
    void RefuseExisting() const;

    /// Nothing when the user has interrupted it.
    std::optional<std::vector<ZipArchive::File>> Collect(CommandContext& context) const;

    /// Writes the files, and the map unless it is empty: all of them or none.
    void Write(const std::vector<ZipArchive::File>& files, const std::string& map) const;

    std::string path;
    std::vector<std::string> logs; // of host programs
    bool isPlain = false;
    bool replaces = false;
};
} // namespace Zent::Discovery::Console
