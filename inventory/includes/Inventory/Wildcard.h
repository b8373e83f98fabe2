#pragma once

#include <string>
#include <string_view>

namespace Zent::Discovery::Inventory
{
/// A pattern for whole texts, in which * stands for any characters and ? for one. ASCII letters match in either case.
class Wildcard final
{
public:
    explicit Wildcard(std::string pattern);

    bool Matches(std::string_view text) const;

private:
    std::string pattern;
};
} // namespace Zent::Discovery::Inventory
