#pragma once

#include "Style.h"

#include <string>

namespace Zent::Discovery::Console
{
/// Colours text for a terminal, or leaves it as it is.
class Colours final
{
public:
    explicit Colours(bool enabled);

    /// Colours when the stream is a terminal and the user's environment does not forbid them.
    static Colours For(bool isTerminal);

    /// The text must be fit for a terminal.
    std::string Paint(const std::string& text, Style style) const;

private:
    bool enabled;
};
} // namespace Zent::Discovery::Console
