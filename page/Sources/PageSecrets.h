#pragma once

#include "Page/PageSettings.h"

#include <string>

namespace Zent::Discovery::Page
{
/// What the files of the settings hold.
struct PageSecrets
{
    std::string Certificate = {}; // PEM, as the next two
    std::string Key = {};
    std::string Authority = {};
    std::string Token = {};

    /// @throws Programs::WrongArgument when a file cannot be read, others may read the key or the token, or what is in
    /// it is not what is needed.
    static PageSecrets Load(const PageSettings& settings);
};
} // namespace Zent::Discovery::Page
