#pragma once

#include "system/LogStreams/ILogStream.h"
#include "system/LogStreams/ILogStreamRefTime.h"
#include "system/LogStreams/LogStreamHeader.h"
#include "system/LogStreams/LogStreamLevel.h"
#include "system/Object.h"
#include "system/SmartPointer.h"
#include "system/String.h"
#include "system/Threading/Lock.h"
#include "system/Threading/Monitor.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace Nfx::System::LogStreams
{
class LogFile;

/// A log in a text file of fixed columns. Each line is handed to the operating system by one call when it is written,
/// so it survives a crash of the process. While the file is open others may read, rename and delete it.
///
/// Control characters in messages and channels are written as \xHH: one event is one line, whatever a peer sends.
///
/// Splitting: a regular file that has reached the maximum size is renamed to NAME.1.bak before the next line,
/// NAME.1.bak to NAME.2.bak and so on; what would be beyond the file count is deleted. While that fails the stream
/// reports it and goes on in the same file, trying again after every sixteenth of the maximum; when the file has grown
/// by file count times maximum since, further lines are lost until it can be split. So the files stay within (file
/// count + 1) times maximum and a line each, or twice that while splitting fails.
///
/// Columns: the date in local time; the seconds since opening with six decimals, right-aligned; the channel, never cut;
/// the type, which is C, S or D by level and E for exceptions; the error. The header's date is the short form.
///
/// What cannot be written, on a full disk for instance, is lost and counted; the first line after it says how many
/// lines are missing and why. A line that was taken in part is completed first, so no line is torn.
class LogStream final : public Object, public ILogStream
{
public:
    static constexpr std::int32_t DefaultMaximumSize = 10 * 1024; // KiB

    /// Opens the file, appending to an existing one, and writes header and opening line. The folder must exist. A disk
    /// that is full is no failure: the header follows when there is room. The reference time starts now.
    /// @throws ArgumentOutOfRangeException when the level is none of the named ones.
    /// @throws IOException, DirectoryNotFoundException or FileNotFoundException, with path and reason in the message.
    LogStream(const String& filePath, const LogStreamLevel& level, const LogStreamHeader& header);

    /// Like the other one, with a reference time of the caller's.
    /// @throws ArgumentNullException when refTime is null.
    LogStream(const String& filePath,
              const LogStreamLevel& level,
              const LogStreamHeader& header,
              const SmartPointer<ILogStreamRefTime>& refTime);

    /// Closes the stream.
    ~LogStream() override;

    LogStream(const LogStream&) = delete;
    LogStream& operator=(const LogStream&) = delete;

    void Write(const LogStreamChannel& channel, const String& message, const LogStreamLevel& level) override;
    void Write(const LogStreamChannel& channel, const String& message, const Exception& exception) override;
    void WriteBytes(const LogStreamChannel& channel,
                    const String& message,
                    const std::uint8_t* data,
                    std::size_t size,
                    const LogStreamLevel& level) override;
    void WriteValue(const LogStreamChannel& channel,
                    const String& message,
                    std::uint64_t value,
                    const LogStreamLevel& level) override;

    bool IsEnabled(const LogStreamLevel& level) const noexcept override
    {
        return level <= highestLevel.load(std::memory_order_relaxed);
    }

    void ChangeLevel(const LogStreamLevel& level) override;
    void Close() override;

    /// Enables splitting: how many files are kept beside the current one; a count below 1 counts as 1.
    void SetFileCount(std::int32_t count);

    /// The size, in KiB, from which a file is split; a size below 1 counts as 1. 10 MiB unless set.
    void SetMaximumSize(std::int32_t size);

private:
    /// Without the lock, which it takes to write what add(lines) has made.
    template <class TAdd>
    void WriteLines(const TAdd& add);

    Threading::Monitor lock; // held while a line is written: a line has the time of its place in the file
    const std::unique_ptr<LogFile> file NFX_PT_GUARDED_BY(lock);
    std::atomic<std::int32_t> highestLevel; // of what is written; changed under the lock, read without
};
} // namespace Nfx::System::LogStreams
