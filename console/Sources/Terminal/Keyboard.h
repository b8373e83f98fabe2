#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Zent::Discovery::Console
{
/// The keys that the user presses while a program fills the terminal. None come when standard input is no terminal.
class Keyboard final
{
public:
    enum class Key
    {
        Up,
        Down,
        PageUp,
        PageDown,
        Home,
        End,
        Quit
    };

    /// Lets keys come at once and unseen. onKey is called on a thread of the keyboard's own.
    explicit Keyboard(std::function<void(Key)> onKey);

    /// Leaves the terminal as it was.
    ~Keyboard();

    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    /// Prepares the terminal anew, as is needed after a shell has had it meanwhile. Main thread only.
    void Renew();

    /// The key that the text begins with, which is taken from it with its bytes, as a terminal sends them; characters
    /// that mean nothing are dropped. Nothing when no key is left or the last one is not complete.
    static std::optional<Key> Take(std::string& text);

private:
    class System;

    const std::unique_ptr<System> system;
};
} // namespace Zent::Discovery::Console
