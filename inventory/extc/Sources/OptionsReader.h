#pragma once

#include "Inventory/ChangeRequest.h"
#include "Inventory/DeviceTable.h"
#include "Inventory/Network.h"
#include "Inventory/SearchOptions.h"

#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// Reads the options that host programs write as JSON. A text without options gives the usual ones.
/// @throws std::invalid_argument with line and column, or the member and what it may be.
class OptionsReader final
{
public:
    OptionsReader() = delete;

    struct SessionOptions
    {
        DeviceTableOptions Table;
        bool AskSystem = false;
        std::string Journal = {}; // a file; empty for none
    };

    static SessionOptions ReadSessionOptions(std::string_view json);

    /// The networks are those of a text that names none.
    static SearchOptions ReadSearchOptions(std::string_view json, std::vector<Network> networks);

    struct StartOptions
    {
        ChangeOptions Change;
        std::string Undoes = {}; // the Id of the journal's entry that it takes back
    };

    static StartOptions ReadChangeOptions(std::string_view json);
};
} // namespace Zent::Discovery::Inventory
