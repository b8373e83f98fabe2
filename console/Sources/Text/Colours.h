#pragma once

#include "Text/Style.h"

#include <string>

namespace Zent::Discovery::Console
{
/// Colours text for a terminal, or leaves it as it is.
class Colours final
{
public:
    explicit Colours(bool enabled);

    /// The text must be fit for a terminal.
    std::string Paint(const std::string& text, Style style) const;

private:
    bool enabled;
};
} // namespace Zent::Discovery::Console
