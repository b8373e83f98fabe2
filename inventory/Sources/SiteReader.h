#pragma once

#include "Inventory/SiteFile.h"

#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// Reads the entries of a site file.
class SiteReader final
{
public:
    SiteReader() = delete;

    /// @throws std::invalid_argument that names file, line, column and reason.
    static std::vector<SiteEntry> Read(std::string_view text, const std::string& name);
};
} // namespace Zent::Discovery::Inventory
