#include "Programs/Process.h"

#include <array>
#include <string_view>

namespace Zent::Discovery::Programs
{
void Process::ReadInput(const std::function<void(const std::string& line)>& take)
{
    std::array<char, MaximumLineBytes> buffer;
    std::string line;
    const auto finish = [&line, &take] {
        if (line.ends_with('\r'))
        {
            line.pop_back();
        }
        take(line);
        line.clear();
    };
    while (const std::size_t size = ReadSome(buffer))
    {
        for (const char character : std::string_view(buffer.data(), size))
        {
            if (character == '\n')
            {
                finish();
                continue;
            }
            if (line.size() == MaximumLineBytes)
            {
                finish();
            }
            line.push_back(character);
        }
    }
    if (!line.empty())
    {
        finish();
    }
}

std::string Process::ReadAllInput()
{
    std::array<char, MaximumLineBytes> buffer;
    std::string all;
    while (const std::size_t size = ReadSome(buffer))
    {
        all.append(buffer.data(), size);
    }
    return all;
}
} // namespace Zent::Discovery::Programs
