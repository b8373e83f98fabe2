#pragma once

#include <iosfwd>
#include <string>

namespace Zent::Discovery::Console
{
/// A line at the bottom of a terminal that says what the program is doing, and makes way for everything else.
class StatusLine final
{
public:
    /// Nothing is shown when the stream is no terminal. It must outlive the object.
    StatusLine(std::ostream& stream, bool isTerminal);

    ~StatusLine();

    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    /// Takes the place of the line shown before. text must be fit for a terminal and fit into one line.
    void Show(const std::string& text);

    void Clear();

private:
    std::ostream& stream;
    const bool isTerminal;
    std::string shown;
};
} // namespace Zent::Discovery::Console
