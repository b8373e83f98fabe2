#pragma once

#include "Inventory/Network.h"

#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// Addresses and networks as users list them: 10.2.0.5,10.2.1.0/26,@FILE. In a file they stand on lines of their own or
/// between commas and blanks; # begins a comment.
class AddressList final
{
public:
    AddressList() = delete;

    /// text is UTF-8, and so are paths in it.
    /// @throws std::runtime_error that names what is wrong and where.
    static std::vector<Inventory::Network> Parse(const std::string& text);
};
} // namespace Zent::Discovery::Console
