#include "Question.h"

#include "ICommand.h"
#include "Show/Output.h"
#include "Terminal/LineInput.h"

using Zent::Discovery::Console::LineInput;

namespace Zent::Discovery::FleetConsole
{
Question::Reply Question::Ask(CommandContext& context, const std::string& text)
{
    if (!LineInput::IsSomebodyThere())
    {
        return Reply::Nobody;
    }
    LineInput input([&context] { context.Waiter.Wake(); }, [&context] { context.Waiter.Interrupt(); });
    input.Drop(); // before the question: who has seen it may answer at once
    context.Out.Ask(text + " [y/N] ");
    while (!context.Waiter.IsInterrupted())
    {
        if (const std::optional<std::string> line = input.Take())
        {
            return LineInput::IsYes(*line) ? Reply::Yes : Reply::No;
        }
        if (input.HasEnded())
        {
            return Reply::No;
        }
        context.Waiter.Take(std::nullopt);
    }
    return Reply::Interrupted;
}
} // namespace Zent::Discovery::FleetConsole
