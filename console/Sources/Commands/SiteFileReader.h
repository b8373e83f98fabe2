#pragma once

#include "Inventory/SiteFile.h"

#include <string>

namespace Zent::Discovery::Console
{
/// Reads site files.
class SiteFileReader final
{
public:
    SiteFileReader() = delete;

    /// path is UTF-8, or stands for standard input.
    /// @throws WrongArgument when the file cannot be read, and when it holds something else, with the place.
    static Inventory::SiteFile Read(const std::string& path);
};
} // namespace Zent::Discovery::Console
