#pragma once

#include <string>

namespace Zent::Discovery::FleetConsole
{
struct CommandContext;

/// Asks whoever sits at the terminal.
class Question final
{
public:
    enum class Reply
    {
        Yes,
        No,
        Nobody, // sits there
        Interrupted
    };

    Question() = delete;

    /// The text must be fit for a terminal.
    static Reply Ask(CommandContext& context, const std::string& text);
};
} // namespace Zent::Discovery::FleetConsole
