#include "LogStream/LogLines.h"
#include "support/FuzzTarget.h"
#include "support/MemoryFaults.h"
#include "system/Exceptions.h"
#include "system/LogStreams/LogStream.h"
#include "system/LogStreams/LogStreamChannel.h"

#include <algorithm>

using Nfx::System::String;
using Nfx::System::IO::IOException;
using namespace Nfx::System::LogStreams;

namespace
{
bool IsControl(char character)
{
    return static_cast<unsigned char>(character) < 32 || character == 127;
}

void CheckLine(const LogLines& lines)
{
    const std::string_view text = lines.Text();
    Fuzzing::Check(lines.Count() == 1 && text.ends_with('\n'), "an event is a line");
    Fuzzing::Check(std::count_if(text.begin(), text.end(), IsControl) == 1, "a line holds no control characters");
}

LogStream* OpenStream(const char* path)
{
    const Tests::MemoryFaults::Scope spared(false);
    return new LogStream(path, LogStreamLevel::Debug, {"author", "company", "product"});
}

/// Nothing may leave a stream: what cannot be written is lost.
void Write(LogStream& stream, const LogStreamChannel& channel, const String& text, const IOException& error) noexcept
{
    stream.Write(channel, text, LogStreamLevel::Debug);
    stream.Write(channel, text, error);
    stream.WriteBytes(channel, text, reinterpret_cast<const std::uint8_t*>(text.CString()), text.Length(),
                      LogStreamLevel::Debug);
}
} // namespace

/// Logs a text as message, channel and exception, to a file that takes everything and to one that takes nothing.
void Fuzzing::Fuzz(std::string_view input)
{
    const String text(input);
    const LogStreamChannel channel(text);
    const IOException error(text, "fuzzers/LogLineFuzzer", __LINE__);
    LogLines message;
    message.Add(channel, 'C', 0, input);
    CheckLine(message);
    LogLines failure;
    failure.AddException(channel, text, error);
    CheckLine(failure);

    static LogStream& patient = *OpenStream("/dev/null");
    static LogStream& full = *OpenStream("/dev/full");
    Write(patient, channel, text, error);
    Write(full, channel, text, error);
}
