#pragma once

#include <string_view>

namespace Zent::Discovery::Inventory
{
/// The order in which people expect names: press-9 before press-10, and Press-9 beside it.
class NaturalOrder final
{
public:
    NaturalOrder() = delete;

    /// Compares runs of digits as numbers and ASCII letters without regard to case.
    static bool IsBefore(std::string_view left, std::string_view right);
};
} // namespace Zent::Discovery::Inventory
