#pragma once

#include "Inventory/DeviceList.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace Zent::Discovery::Console
{
/// Reads a saved result: the documents that the program prints with --json, one after another or in one array.
/// Programs may have laid them out anew.
class InventoryReader final
{
public:
    /// The devices of the file, without those that have said Bye. path is UTF-8.
    /// @throws std::runtime_error that names the place when the file cannot be read or holds something else.
    static Inventory::DeviceList Read(const std::string& path);

    /// The same of a text; name stands for it in messages.
    static Inventory::DeviceList ReadText(std::string_view text, const std::string& name);

private:
    InventoryReader(std::string_view text, const std::string& name);

    Inventory::DeviceList ReadAll();
    void SkipSeparators();
    std::size_t EndOfDocument() const;
    Inventory::Device ReadDocument(std::string_view document) const;
    [[noreturn]] void Refuse(const std::string& reason) const;

    const std::string_view text;
    const std::string& name;
    std::size_t position = 0;
    bool isArray = false;
};
} // namespace Zent::Discovery::Console
