#include "LogStream/LogLines.h"

#include "LogStream/PrintableText.h"
#include "Os/IFile.h"
#include "Os/IOs.h"
#include "system/Convert.h"
#include "system/Exception.h"
#include "system/LogStreams/LogStreamChannel.h"

namespace Nfx::System::LogStreams
{
namespace
{
void AppendError(std::string& target, std::int32_t error)
{
    if (error == 0)
    {
        target.append(11, ' ');
        return;
    }
    target.push_back('$');
    target.append(Convert::ToHexadecimal(error).View());
}
} // namespace

void LogLines::Add(const LogStreamChannel& channel, char type, std::int32_t error, std::string_view message)
{
    if (!text.empty())
    {
        laterLines.push_back(text.size());
    }
    const std::string_view channelColumn = channel.ColumnText().View();
    text.reserve(text.size() + StampLength + channelColumn.size() + message.size() + 24);
    text.append(StampLength, ' ');
    text.append(channelColumn);
    text.push_back('|');
    text.push_back(type);
    text.push_back('|');
    AppendError(text, error);
    text.push_back('|');
    AppendPrintable(text, message);
    text.append(Os::Platform().File().LineEnd());
}

void LogLines::AddException(const LogStreamChannel& channel, const String& message, const Exception& exception)
{
    const String text = message + " " + exception.ToString() + ", location: " + exception.GetSourceFile() + "(" +
                        exception.GetSourceLine().ToString() + ")";
    Add(channel, 'E', exception.GetError().Code(), text.View());
}

void LogLines::Stamp(std::string_view stamp)
{
    text.replace(0, StampLength, stamp);
    for (const std::size_t line : laterLines)
    {
        text.replace(line, StampLength, stamp);
    }
}
} // namespace Nfx::System::LogStreams
