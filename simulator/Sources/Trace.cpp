#include "Trace.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <stdexcept>

namespace Zent::Discovery::Simulator
{
namespace
{
/// A number of milliseconds with three digits after the point, in every locale.
std::string Text(std::chrono::microseconds time)
{
    std::array<char, 32> text;
    const long long count = time.count();
    std::snprintf(text.data(), text.size(), "%lld.%03lld ms", count / 1000, count % 1000);
    return text.data();
}

std::string Description(const Treatment& treatment)
{
    if (treatment.Copies == 0)
    {
        return ", lost";
    }
    std::string text;
    if (treatment.Delay.count() > 0)
    {
        text += " after " + Text(treatment.Delay);
    }
    if (treatment.HoldUp.count() > 0)
    {
        text += ", held up " + Text(treatment.HoldUp);
    }
    if (treatment.IsOvertaken)
    {
        text += ", overtaken";
    }
    if (treatment.Copies > 1)
    {
        text += ", twice";
    }
    if (treatment.Form == Treatment::Forms::Cut)
    {
        text += ", cut";
    }
    else if (treatment.Form == Treatment::Forms::Padded)
    {
        text += ", oversize";
    }
    return text;
}
} // namespace

Trace::Trace(const std::string& path)
{
    if (path.empty())
    {
        return;
    }
    file.open(std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::binary);
    if (!file)
    {
        throw std::runtime_error("cannot write trace \"" + path + "\": " + std::strerror(errno));
    }
}

void Trace::Note(const std::string& text)
{
    Write(text);
}

void Trace::Note(std::size_t device, const std::string& text)
{
    Write("  device " + std::to_string(device + 1) + ' ' + text);
}

void Trace::Note(std::size_t device, std::string_view text, const Treatment& treatment)
{
    Note(device, std::string(text) + Description(treatment));
}

void Trace::Write(const std::string& line)
{
    if (!file.is_open())
    {
        return;
    }
    file << line << '\n' << std::flush;
    if (!file)
    {
        std::cerr << "device-simulator: the trace ends here: it cannot be written any more\n";
        file.close();
    }
}
} // namespace Zent::Discovery::Simulator
