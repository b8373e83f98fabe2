#pragma once

#include "Inventory/DeviceList.h"

#include <string>

namespace Zent::Discovery::Console
{
/// Reads a saved result: the documents that the program prints with --json, one after another or in one array.
/// Programs may have laid them out anew.
class InventoryReader final
{
public:
    InventoryReader() = delete;

    /// The devices of the file, without those that have said Bye. path is UTF-8.
    /// @throws std::runtime_error when the file cannot be read, WrongArgument that names the place when it holds
    /// something else.
    static Inventory::DeviceList Read(const std::string& path);

    /// The same of a text; name stands for it in messages.
    static Inventory::DeviceList ReadText(const std::string& text, const std::string& name);
};
} // namespace Zent::Discovery::Console
