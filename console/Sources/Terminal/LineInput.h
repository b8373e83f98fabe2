#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Zent::Discovery::Console
{
/// The lines that the user types, for a program that waits for other things, too. One per process. Main thread only.
class LineInput final
{
public:
    /// Both are called on another thread: onNews when there is a line, or no more will come; onHangUp when the terminal
    /// has been closed, of which the signal may come only later.
    LineInput(std::function<void()> onNews, std::function<void()> onHangUp);

    /// Neither is called any more.
    ~LineInput();

    LineInput(const LineInput&) = delete;
    LineInput& operator=(const LineInput&) = delete;

    /// Whether there is somebody to answer: what he types comes to this program, and he sees its questions.
    static bool IsSomebodyThere();

    /// Whether an answer agrees, in either case.
    static bool IsYes(std::string answer);

    /// Drops what was typed so far: it answers no question that is asked only now.
    void Drop();

    /// The next line without its end; nothing when there is none yet.
    std::optional<std::string> Take();

    /// Whether no line will come any more from a terminal that is still there.
    bool HasEnded() const;

private:
    struct State;

    static void DropTyped();

    /// Whether the input has ended because the terminal has been closed.
    static bool HasHungUp();

    const std::shared_ptr<State> state; // shared with the reader, who may wait for a line that never comes
};
} // namespace Zent::Discovery::Console
