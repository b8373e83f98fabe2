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
    /// onNews is called on another thread when there is a line, or no more will come.
    explicit LineInput(std::function<void()> onNews);

    /// onNews is not called any more.
    ~LineInput();

    LineInput(const LineInput&) = delete;
    LineInput& operator=(const LineInput&) = delete;

    /// Whether there is somebody to answer: what he types comes to this program, and he sees its questions.
    static bool IsSomebodyThere();

    /// Drops what was typed so far: it answers no question that is asked only now.
    void Drop();

    /// The next line without its end; nothing when there is none yet.
    std::optional<std::string> Take();

    /// Whether no line will come any more.
    bool HasEnded() const;

private:
    struct State;

    static void DropTyped();

    const std::shared_ptr<State> state; // shared with the reader, who may wait for a line that never comes
};
} // namespace Zent::Discovery::Console
