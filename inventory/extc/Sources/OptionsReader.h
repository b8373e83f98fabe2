#pragma once

#include "Inventory/DeviceTable.h"
#include "Inventory/SearchOptions.h"

#include <string_view>

namespace Zent::Discovery::Inventory
{
/// Reads the options that host programs write as JSON. A text without options gives the usual ones.
/// @throws std::invalid_argument with line and column, or the member and what it may be.
class OptionsReader final
{
public:
    OptionsReader() = delete;

    static DeviceTableOptions ReadTableOptions(std::string_view json);
    static SearchOptions ReadSearchOptions(std::string_view json);
};
} // namespace Zent::Discovery::Inventory
