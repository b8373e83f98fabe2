#include "support/TemporaryFolder.h"
#include "system/DateTime.h"
#include "system/LogStreams/LogStream.h"
#include "system/LogStreams/LogStreamChannel.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Nfx::System;
using namespace Nfx::System::LogStreams;
using Tests::TemporaryFolder;

namespace
{
/// Limits the size of files, with SIGXFSZ in force as a host has it, while it lives.
class FileSizeLimit final
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &previous);
        const rlimit limit{bytes, previous.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }

    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &previous); }

    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit previous;
};

bool IsPending(int signal)
{
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, signal) == 1;
}

class LogStreamPosixTest : public testing::Test
{
protected:
    SmartPointer<LogStream> Open(const std::string& path)
    {
        return SmartPointer<LogStream>(
            new LogStream(String(path.c_str()), LogStreamLevel::Debug, LogStreamHeader{"A", "C", "P"}));
    }

    void Write(LogStream& log, int first, int count)
    {
        for (int number = first; number < first + count; ++number)
        {
            log.Write(channel, String(("number " + std::to_string(number)).c_str()), LogStreamLevel::Debug);
        }
    }

    /// How many lines end in the text "number N", for N from first on, one after the other.
    int CountNumbers(const std::vector<std::string>& lines, int first) const
    {
        int next = first;
        for (const std::string& line : lines)
        {
            next += line.ends_with("|number " + std::to_string(next)) ? 1 : 0;
        }
        return next - first;
    }

    const TemporaryFolder folder;
    const LogStreamChannel channel{"Main"};
};
} // namespace

TEST_F(LogStreamPosixTest, LinesBeyondTheSizeLimitAreCountedAndNoSignalEndsTheHost)
{
    const SmartPointer<LogStream> log = Open(folder.PathOf("test.log"));
    {
        const FileSizeLimit limit(4096);
        Write(*log, 0, 100);
        EXPECT_EQ(std::filesystem::file_size(folder.PathOf("test.log")), 4096U);
        EXPECT_FALSE(IsPending(SIGXFSZ));
    }
    Write(*log, 100, 10);

    const std::vector<std::string> lines = folder.ReadLines("test.log");
    const int before = CountNumbers(lines, 0);
    EXPECT_EQ(CountNumbers(lines, 100), 10);
    const std::string report = std::to_string(100 - before) + " lines lost: File too large";
    EXPECT_NE(folder.Read("test.log").find("|C|           |" + report + "\n"), std::string::npos);
}

TEST_F(LogStreamPosixTest, SignalsThatTheHostHasPendingStayPending)
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGXFSZ);
    sigaddset(&signals, SIGPIPE);
    sigset_t previous;
    pthread_sigmask(SIG_BLOCK, &signals, &previous);
    const SmartPointer<LogStream> log = Open(folder.PathOf("test.log"));
    {
        const FileSizeLimit limit(4096);
        Write(*log, 0, 100);
        EXPECT_FALSE(IsPending(SIGXFSZ));
        raise(SIGPIPE);
        Write(*log, 100, 1);
        EXPECT_FALSE(IsPending(SIGXFSZ));
        EXPECT_TRUE(IsPending(SIGPIPE));
        raise(SIGXFSZ);
        Write(*log, 101, 1);
        EXPECT_TRUE(IsPending(SIGXFSZ));
    }
    const timespec noWait{};
    EXPECT_EQ(sigtimedwait(&signals, nullptr, &noWait), SIGPIPE);
    EXPECT_EQ(sigtimedwait(&signals, nullptr, &noWait), SIGXFSZ);
    EXPECT_EQ(sigtimedwait(&signals, nullptr, &noWait), -1);
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

TEST_F(LogStreamPosixTest, SizeLimitSplitsTheFileWithoutLoss)
{
    const SmartPointer<LogStream> log = Open(folder.PathOf("test.log"));
    log->SetFileCount(3);
    const FileSizeLimit limit(8192);
    Write(*log, 0, 100);

    std::vector<std::string> lines = folder.ReadLines("test.log.1.bak");
    const std::vector<std::string> newLines = folder.ReadLines("test.log");
    lines.insert(lines.end(), newLines.begin(), newLines.end());
    EXPECT_EQ(CountNumbers(lines, 0), 100);
    EXPECT_FALSE(std::filesystem::exists(folder.PathOf("test.log.2.bak")));
}

TEST_F(LogStreamPosixTest, PipeIsNeitherSplitNorWaitedForNorDeadly)
{
    const std::string path = folder.PathOf("test.log");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_ANY_THROW(Open(path)); // without a reader an open for writing would wait for one

    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    const SmartPointer<LogStream> log = Open(path);
    log->SetFileCount(3);
    log->SetMaximumSize(1);
    Write(*log, 0, 2000);
    close(reader);
    Write(*log, 2000, 100);
    EXPECT_FALSE(IsPending(SIGPIPE));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);
}

TEST_F(LogStreamPosixTest, RemovedFolderComesBackWithTheNextSplit)
{
    std::filesystem::create_directories(folder.PathOf("a/b"));
    const SmartPointer<LogStream> log = Open(folder.PathOf("a/b/test.log"));
    log->SetFileCount(3);
    log->SetMaximumSize(4);
    std::filesystem::remove_all(folder.PathOf("a"));
    Write(*log, 0, 60);

    EXPECT_TRUE(folder.ReadLines("a/b/test.log").back().ends_with("|number 59"));
}

TEST(DateTimePosixTest, LocalTimeFollowsDaylightSaving)
{
    const char* const zone = std::getenv("TZ");
    const std::string previous = zone != nullptr ? zone : "";
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    tzset();
    const std::int64_t change = 1'774'746'000'000'000; // 29/03/2026 01:00 in Greenwich
    const std::string before = DateTime::FromUtc(change - 1000).ToString().CString();
    const std::string after = DateTime::FromUtc(change).ToString().CString();
    zone != nullptr ? setenv("TZ", previous.c_str(), 1) : unsetenv("TZ");
    tzset();

    EXPECT_EQ(before, "29/03/2026 01:59:59.999");
    EXPECT_EQ(after, "29/03/2026 03:00:00.000");
}
