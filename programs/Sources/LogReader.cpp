#include "Programs/LogReader.h"

namespace Zent::Discovery::Programs
{
namespace
{
constexpr std::string_view SenderLine = "Sender of the dropped message : ";

struct Line
{
    std::string_view Channel;
    std::string_view Message;
};

/// The columns Date, RefTime, Channel, T and Error come before the message, each after a bar. No column holds one.
Line Split(std::string_view text)
{
    Line line;
    for (int column = 0; column < 6; ++column)
    {
        const std::size_t bar = text.find('|');
        if (bar == std::string_view::npos)
        {
            return {};
        }
        if (column == 3)
        {
            const std::string_view channel = text.substr(0, bar);
            line.Channel = channel.substr(0, channel.find_last_not_of(' ') + 1);
        }
        text.remove_prefix(bar + 1);
    }
    line.Message = text.substr(0, text.find_last_not_of('\r') + 1);
    return line;
}

/// The version in a line that ends with "<> [VERSION]."
std::string VersionIn(std::string_view message)
{
    const std::size_t open = message.rfind('[');
    const std::size_t close = message.find(']', open);
    return close == std::string_view::npos ? "" : std::string(message.substr(open + 1, close - open - 1));
}
} // namespace

void LogReader::Add(std::string_view line)
{
    const auto [channel, message] = Split(line);
    if (channel == "Start" && message == "Start Log")
    {
        *this = LogReader();
    }
    else if (message.ends_with("=> BAD MESSAGE FORMAT !"))
    {
        defect = message.substr(0, message.find(" !!! =>"));
    }
    else if (channel == "MessageParser")
    {
        AddOfParser(message);
    }
    else if (channel == "ServerTaskProcessor" && message.starts_with("Semaphore is full"))
    {
        ++summary.QueueFull;
    }
    else if (channel == "Receiver" && message.starts_with("MessageSize is too low"))
    {
        ++summary.Oversize;
    }
    else if (message.starts_with("Another socket on this machine is bound to port"))
    {
        summary.SharesPort = true;
    }
    else if (message == "Thread priority Highest refused by the system.")
    {
        summary.IsRealTimeRefused = true;
    }
}

void LogReader::AddOfParser(std::string_view message)
{
    if (message.starts_with("Version mismatch with received message"))
    {
        version = VersionIn(message);
    }
    else if (message.starts_with("The protocol version of the message is not supported"))
    {
        ++summary.VersionDropped;
        senders = &LogSummary::VersionSenders;
        if (!version.empty())
        {
            summary.Versions.insert(version);
        }
    }
    else if (message.starts_with("Message dropped : bad format"))
    {
        if (summary.FormatDropped++ == 0)
        {
            summary.Defect = defect;
        }
        defect.clear();
        senders = &LogSummary::FormatSenders;
    }
    else if (message.starts_with(SenderLine))
    {
        (summary.*senders).emplace(message.substr(SenderLine.size()));
    }
    else if (message.starts_with("Semaphore is full"))
    {
        ++summary.QueueFull;
    }
}
} // namespace Zent::Discovery::Programs
