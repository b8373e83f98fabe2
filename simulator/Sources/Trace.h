#pragma once

#include "FaultPlan.h"

#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>

namespace Zent::Discovery::Simulator
{
/// What the devices were asked and what they did about it, as lines of a file. There are no clock times in it: the same
/// seed, requests and lines of standard input give the same file. Main thread only.
class Trace final
{
public:
    /// Writes nothing when the path is empty; overwrites the file otherwise.
    /// @throws std::runtime_error when the file cannot be written.
    explicit Trace(const std::string& path);

    /// An event that all devices share, such as a request.
    void Note(const std::string& text);

    /// What a device does.
    void Note(std::size_t device, const std::string& text);

    /// What a device sends, and what goes wrong with it.
    void Note(std::size_t device, std::string_view text, const Treatment& treatment);

private:
    void Write(const std::string& line);

    std::ofstream file;
};
} // namespace Zent::Discovery::Simulator
