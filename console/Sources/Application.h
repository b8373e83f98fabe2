#pragma once

#include "ExitStatus.h"
#include "ICommand.h"
#include "MessageQueue.h"
#include "Options.h"
#include "Output.h"

#include <memory>

namespace Zent::Discovery::Console
{
/// Runs the command that the user asked for.
class Application final
{
public:
    /// All three must outlive the object.
    Application(const Options& options, MessageQueue& messages, Output& output);

    /// @throws std::runtime_error when a file cannot be read, or the library cannot be loaded or refuses.
    ExitStatus Run();

private:
    ExitStatus RunWithServer();
    std::unique_ptr<ICommand> MakeCommand() const;

    const Options& options;
    MessageQueue& messages;
    Output& output;
};
} // namespace Zent::Discovery::Console
