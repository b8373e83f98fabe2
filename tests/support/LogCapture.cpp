#include "support/LogCapture.h"

#include "support/WaitUntil.h"

#include <atomic>
#include <fstream>
#include <random>
#include <sstream>

namespace Tests
{
using Zent::Discovery::DiscoveryLogger;

namespace
{
std::filesystem::path NewFolder()
{
    std::random_device random;
    return std::filesystem::temp_directory_path() / ("discovery-log-" + std::to_string(random()));
}
} // namespace

LogCapture::LogCapture(const Nfx::System::LogStreams::LogStreamLevel& level)
    : folder(NewFolder())
{
    DiscoveryLogger::GetInstance().Init((folder / "test.log").string().c_str(), level);
}

LogCapture::~LogCapture()
{
    DiscoveryLogger::GetInstance().Close();
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

std::string LogCapture::Text() const
{
    std::ifstream file(folder / "test.log", std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

int LogCapture::Count(std::string_view text) const
{
    const std::string all = Text();
    int count = 0;
    for (std::size_t position = all.find(text); position != std::string::npos; position = all.find(text, position + 1))
    {
        ++count;
    }
    return count;
}

bool LogCapture::WaitFor(std::string_view text, int times) const
{
    return WaitUntil([&] { return Count(text) >= times; });
}

bool LogCapture::HasInOrder(std::initializer_list<std::string_view> texts) const
{
    const std::string all = Text();
    std::size_t position = 0;
    for (const std::string_view text : texts)
    {
        position = all.find(text, position);
        if (position == std::string::npos)
        {
            return false;
        }
        position += text.size();
    }
    return true;
}
} // namespace Tests
