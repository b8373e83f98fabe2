#include "LogStream/LogFile.h"

#include "LogStream/PrintableText.h"
#include "Os/IFile.h"
#include "Os/IOs.h"
#include "system/DateTime.h"
#include "system/Exceptions.h"
#include "system/IO/DirectoryInfo.h"
#include "system/IO/FileInfo.h"
#include "system/IO/Path.h"
#include "system/Immortal.h"
#include "system/LogStreams/LogStreamChannel.h"
#include "system/UInt64.h"

#include <new>
#include <utility>

using Nfx::System::IO::DirectoryInfo;
using Nfx::System::IO::FileInfo;
using Nfx::System::IO::FileStream;
using Nfx::System::IO::Path;
using Nfx::System::IO::StreamWriter;

namespace Nfx::System::LogStreams
{
namespace
{
constexpr char ColumnTitles[] =
    "|Date                   |RefTime           |Channel                                 |T|Error      |Message";
constexpr char ColumnRule[] =
    "|-----------------------|------------------|----------------------------------------|-|-----------|-------";

constexpr std::int64_t RetriesPerMaximum = 16;

/// The channel of what the log says about itself.
const LogStreamChannel& OwnChannel()
{
    static const Immortal<LogStreamChannel> channel("LogStream");
    return channel.Get();
}

SmartPointer<FileStream> OpenStream(const String& path)
{
    return SmartPointer<FileStream>(new FileStream(path));
}
} // namespace

LogFile::LogFile(const String& path,
                 const LogStreamLevel& level,
                 const LogStreamHeader& header,
                 const SmartPointer<ILogStreamRefTime>& refTime,
                 std::int64_t maximumSize)
    : path(path)
    , header(header)
    , level(level)
    , clock(refTime)
    , stream(OpenStream(path))
    , writer(new StreamWriter(stream))
    , maximumSize(maximumSize)
{
    WriteHeader();
    LogLines opening;
    opening.Add(LogStreamChannel("Start "), 'C', 0, "Start Log");
    opening.Stamp(clock.Stamp());
    writer->Write(opening.Text());
}

void LogFile::Append(LogLines& lines)
{
    if (!isOpen)
    {
        return;
    }
    bytesSinceFailure += static_cast<std::int64_t>(lines.Text().size());
    SplitWhenFull();
    // That the file has reached a limit which the process or the file system sets shows only in a write that fails.
    if (TryAppend(lines) || (SplitWhenFull() && TryAppend(lines)))
    {
        return;
    }
    if (lostLines == 0)
    {
        lossReason = IsOvergrown() ? String("the file is full and cannot be split") : stream->GetFailureText();
    }
    CountLost(lines.Count());
}

void LogFile::Close()
{
    try
    {
        LogLines closing;
        closing.Add(LogStreamChannel("Close"), 'C', 0, "Close Log");
        Append(closing);
    }
    catch (const std::bad_alloc&) // for want of memory the log ends without that line, but its file must be free
    {
    }
    isOpen = false;
    writer->Close();
}

void LogFile::WriteHeader()
{
    const std::string_view lineEnd = Os::Platform().File().LineEnd();
    isFresh = stream->Length() == 0;
    std::string text;
    if (!isFresh)
    {
        text += lineEnd; // sets the header apart, and ends a line that an earlier process may have left unfinished
    }
    const std::pair<const char*, String> fields[] = {{"| Author  : ", header.Author},
                                                     {"| Company : ", header.Company},
                                                     {"| Product : ", header.Product},
                                                     {"| Date    : ", DateTime::Now().ToShortString()},
                                                     {"| Path    : ", Path::GetDirectoryName(path)},
                                                     {"| File    : ", Path::GetFileName(path)},
                                                     {"| Level   : ", level.ToString()}};
    for (const auto& [title, value] : fields)
    {
        text += title;
        AppendPrintable(text, value.View());
        text += lineEnd;
    }
    text += ColumnTitles;
    text += lineEnd;
    text += ColumnRule;
    text += lineEnd;
    writer->Write(text);
}

bool LogFile::TryAppend(LogLines& lines)
{
    if (IsOvergrown() || !TryReportLost())
    {
        return false;
    }
    return TryWrite(lines);
}

bool LogFile::TryWrite(LogLines& lines)
{
    lines.Stamp(clock.Stamp());
    if (!writer->TryWrite(lines.Text()))
    {
        return false;
    }
    isFresh = isFresh && !writer->GetUnfinishedText().empty();
    return true;
}

bool LogFile::TryReportLost()
{
    if (lostLines == 0)
    {
        return true;
    }
    String message = UInt64(lostLines).ToString() + (lostLines == 1 ? " line lost" : " lines lost");
    if (!lossReason.IsEmpty())
    {
        message += ": " + lossReason;
    }
    LogLines report;
    report.Add(OwnChannel(), 'C', 0, message.View());
    if (!TryWrite(report))
    {
        return false;
    }
    lostLines = 0;
    lossReason.Clear();
    return true;
}

bool LogFile::IsFull() const
{
    // A file that holds no line yet is never full. Were it split when a limit leaves room for the header alone, each
    // split would keep one more file without a line and delete one that has lines.
    return !isFresh && (stream->Length() >= maximumSize || stream->IsAtSizeLimit());
}

bool LogFile::IsOvergrown() const
{
    return hasSplitFailed && stream->Length() - lengthAtFailure >= fileCount * maximumSize;
}

bool LogFile::SplitWhenFull()
{
    const bool isWaiting = hasSplitFailed && bytesSinceFailure < maximumSize / RetriesPerMaximum;
    if (fileCount == 0 || isWaiting || !stream->IsRegular() || !IsFull())
    {
        return false;
    }
    try
    {
        Split();
    }
    catch (const Exception& exception)
    {
        ReportSplitFailure(exception);
        return false;
    }
    hasSplitFailed = false;
    return true;
}

void LogFile::Split()
{
    writer->TryFlush();
    // What the old file could take only in part goes into the new one as a whole. A header is written anew anyway.
    const std::string unfinished = isFresh ? std::string() : writer->GetUnfinishedText();
    const bool isMoved = MoveAside();
    try
    {
        DirectoryInfo(Path::GetDirectoryName(path)).Create(); // somebody may have removed it
        const SmartPointer<FileStream> next = OpenStream(path);
        const SmartPointer<StreamWriter> nextWriter(new StreamWriter(next));
        writer->Close();
        stream = next;
        writer = nextWriter;
    }
    catch (const Exception&)
    {
        if (isMoved)
        {
            FileInfo(KeptPath(1)).MoveTo(path);
        }
        throw;
    }
    WriteHeader();
    if (!unfinished.empty() && !writer->TryWrite(unfinished))
    {
        CountLost(1);
    }
}

bool LogFile::MoveAside() const
{
    const FileInfo current(path);
    if (!current.Exists()) // renamed or deleted by somebody else
    {
        return false;
    }
    // Only as far as the first gap: a split that fails on its way and is tried again must not push out a kept file.
    std::int32_t last = 1;
    while (last < fileCount && FileInfo(KeptPath(last)).Exists())
    {
        ++last;
    }
    for (std::int32_t number = last - 1; number >= 1; --number)
    {
        FileInfo(KeptPath(number)).MoveTo(KeptPath(number + 1));
    }
    current.MoveTo(KeptPath(1));
    return true;
}

String LogFile::KeptPath(std::int32_t number) const
{
    return path + "." + Int32(number).ToString() + ".bak";
}

void LogFile::ReportSplitFailure(const Exception& exception)
{
    if (!hasSplitFailed)
    {
        lengthAtFailure = stream->Length();
    }
    hasSplitFailed = true;
    bytesSinceFailure = 0;
    if (IsOvergrown())
    {
        return;
    }
    LogLines report;
    report.AddException(OwnChannel(), "Error splitting log file", exception);
    TryWrite(report);
}
} // namespace Nfx::System::LogStreams
