#pragma once

#include "Inventory/ChangeRequest.h"

#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// Settings of network interfaces as users write them.
class InterfaceFile final
{
public:
    InterfaceFile() = delete;

    /// What the file, a JSON array of interfaces, asks for: at least one request, in normal form, and one for each
    /// interface at most.
    /// @throws Programs::WrongArgument that names place and reason when it holds something else or cannot be read.
    static std::vector<Inventory::ChangeRequest> Read(const std::string& file);
};
} // namespace Zent::Discovery::Console
