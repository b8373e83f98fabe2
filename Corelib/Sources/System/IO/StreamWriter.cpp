#include "system/IO/StreamWriter.h"

#include "system/Exceptions.h"

namespace Nfx::System::IO
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/IO/StreamWriter";
} // namespace

StreamWriter::StreamWriter(const SmartPointer<Stream>& stream)
    : stream(stream)
{
    if (stream.IsNull())
    {
        throw ArgumentNullException(SourceName, __LINE__);
    }
}

bool StreamWriter::TryWrite(std::string_view text)
{
    if (!TryFlush())
    {
        return false;
    }
    unfinished.reserve(text.size()); // once a part is written, there must be memory for the rest
    const std::size_t written = stream->Write(text);
    if (written == 0)
    {
        return text.empty();
    }
    if (written < text.size())
    {
        unfinished = text;
        taken = written;
    }
    return true;
}

void StreamWriter::Write(std::string_view text)
{
    if (!TryWrite(text))
    {
        unfinished.append(text);
    }
}

bool StreamWriter::TryFlush()
{
    if (unfinished.empty())
    {
        return true;
    }
    taken += stream->Write(std::string_view(unfinished).substr(taken));
    if (taken < unfinished.size())
    {
        return false;
    }
    unfinished.clear();
    taken = 0;
    return true;
}

void StreamWriter::Close()
{
    unfinished.clear();
    taken = 0;
    stream->Close();
}
} // namespace Nfx::System::IO
