#pragma once

#include "LogStream/LogClock.h"
#include "LogStream/LogLines.h"
#include "system/IO/FileStream.h"
#include "system/IO/StreamWriter.h"
#include "system/LogStreams/ILogStreamRefTime.h"
#include "system/LogStreams/LogStreamHeader.h"
#include "system/LogStreams/LogStreamLevel.h"
#include "system/SmartPointer.h"
#include "system/String.h"

#include <cstddef>
#include <cstdint>

namespace Nfx::System
{
class Exception;
}

namespace Nfx::System::LogStreams
{
/// The file of a log stream: its header, its lines, and the change to a new file when it is full. Counts what cannot be
/// written. One thread at a time.
class LogFile final
{
public:
    /// Opens the file and writes header and opening line, or keeps both until there is room. The maximum size is in
    /// bytes.
    /// @throws IOException, DirectoryNotFoundException or FileNotFoundException, with path and reason in the message.
    LogFile(const String& path,
            const LogStreamLevel& level,
            const LogStreamHeader& header,
            const SmartPointer<ILogStreamRefTime>& refTime,
            std::int64_t maximumSize);

    /// Writes lines, stamped with the time, or counts them as lost.
    void Append(LogLines& lines);

    void CountLost(std::size_t lines) noexcept { lostLines += lines; }

    const LogStreamLevel& Level() const noexcept { return level; }

    void SetLevel(const LogStreamLevel& newLevel) { level = newLevel; }

    /// Enables splitting.
    /// @param count files kept beside the current one, at least 1
    void SetFileCount(std::int32_t count) { fileCount = count; }

    /// @param size bytes
    void SetMaximumSize(std::int64_t size) { maximumSize = size; }

    bool IsOpen() const noexcept { return isOpen; }

    /// Writes the closing line and closes the file; nothing is written from then on.
    void Close();

private:
    void WriteHeader();
    bool TryAppend(LogLines& lines);
    bool TryWrite(LogLines& lines);
    bool TryReportLost();

    bool IsFull() const;
    bool IsOvergrown() const;
    bool SplitWhenFull();
    void Split();
    bool MoveAside() const;
    String KeptPath(std::int32_t number) const;
    void ReportSplitFailure(const Exception& exception);

    const String path; // absolute: the process may change its current folder
    const LogStreamHeader header;
    LogStreamLevel level;
    LogClock clock;
    SmartPointer<IO::FileStream> stream;
    SmartPointer<IO::StreamWriter> writer; // on the stream
    bool isOpen = true;
    bool isFresh = false; // the file began with our header and holds no line yet

    std::int32_t fileCount = 0; // 0: the file is never split
    std::int64_t maximumSize;   // bytes
    bool hasSplitFailed = false;
    std::int64_t lengthAtFailure = 0;   // of the file, when a split failed for the first time
    std::int64_t bytesSinceFailure = 0; // given to Append since the last attempt

    std::size_t lostLines = 0;
    String lossReason; // of the first line lost
};
} // namespace Nfx::System::LogStreams
