#include "support/LogCapture.h"

#include "support/WaitUntil.h"

namespace Tests
{
using Zent::Discovery::DiscoveryLogger;

LogCapture::LogCapture(const Nfx::System::LogStreams::LogStreamLevel& level)
{
    DiscoveryLogger::GetInstance().Init(folder.PathOf("test.log").c_str(), level);
}

LogCapture::~LogCapture()
{
    DiscoveryLogger::GetInstance().Close();
}

std::string LogCapture::Text() const
{
    return folder.Read("test.log");
}

int LogCapture::Count(std::string_view text) const
{
    return folder.CountIn("test.log", text);
}

bool LogCapture::WaitFor(std::string_view text, int times) const
{
    return WaitUntil([&] { return Count(text) >= times; });
}

std::string LogCapture::TypesOf(std::string_view text) const
{
    constexpr std::size_t TypeColumn = 1 + 23 + 1 + 18 + 1 + 40 + 1; // date, reference time and channel go before it
    std::string types;
    for (const std::string& line : folder.ReadLines("test.log"))
    {
        if (line.find(text) != std::string::npos && line.size() > TypeColumn)
        {
            types += line[TypeColumn];
        }
    }
    return types;
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
