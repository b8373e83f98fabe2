#include "support/RunOnThreads.h"
#include "support/TemporaryFolder.h"
#include "system/Exceptions.h"
#include "system/LogStreams/LogStream.h"
#include "system/LogStreams/LogStreamChannel.h"

#include <gtest/gtest.h>

#include <iterator>
#include <numeric>

using namespace Nfx::System;
using namespace Nfx::System::LogStreams;
using Tests::TemporaryFolder;

namespace
{
constexpr std::int32_t MaximumKiB = 8;
constexpr std::uintmax_t Maximum = MaximumKiB * 1024;
constexpr std::uintmax_t LongestLine = 400;

class LogStreamSplitTest : public testing::Test
{
protected:
    LogStreamSplitTest() { log.SetMaximumSize(MaximumKiB); }

    void WriteNumbered(int first, int count, const LogStreamChannel& channel)
    {
        for (int number = first; number < first + count; ++number)
        {
            const std::string text = "number " + std::to_string(number) + " " + std::string(100, 'x');
            log.Write(channel, String(text.c_str()), LogStreamLevel::Critical);
        }
    }

    /// The numbers that the lines of one channel carry, in the order of the files and lines.
    std::vector<int> Numbers(const std::vector<std::string>& files, const std::string& channel) const
    {
        std::vector<int> numbers;
        for (const std::string& file : files)
        {
            for (const std::string& line : folder.ReadLines(file))
            {
                if (line.size() > 44 && line.substr(44).starts_with(channel + " "))
                {
                    EXPECT_TRUE(line.ends_with(" " + std::string(100, 'x'))) << line;
                    numbers.push_back(std::stoi(line.substr(line.find("number ") + 7)));
                }
            }
        }
        return numbers;
    }

    std::vector<std::string> LinesWith(const std::string& part) const
    {
        std::vector<std::string> found;
        for (const std::string& line : folder.ReadLines("test.log"))
        {
            if (line.find(part) != std::string::npos)
            {
                found.push_back(line);
            }
        }
        return found;
    }

    static std::vector<int> Range(int first, int count)
    {
        std::vector<int> numbers(static_cast<std::size_t>(count));
        std::iota(numbers.begin(), numbers.end(), first);
        return numbers;
    }

    const TemporaryFolder folder;
    const LogStreamChannel channel{"Main"};
    LogStream log{String(folder.PathOf("test.log").c_str()), LogStreamLevel::Debug, {"A", "C", "P"}};
};
} // namespace

TEST_F(LogStreamSplitTest, NoLineIsLostTornOrOutOfOrderWhenManyThreadsFillTheFiles)
{
    constexpr int Threads = 8;
    constexpr int LinesPerThread = 400;
    constexpr std::int32_t EnoughFiles = 1000;
    log.SetFileCount(EnoughFiles);
    Tests::RunOnThreads(Threads, [this](int number) {
        WriteNumbered(0, LinesPerThread, LogStreamChannel(String(("T" + std::to_string(number)).c_str())));
    });

    std::vector<std::string> files = {"test.log"};
    for (int number = 1; std::filesystem::exists(folder.PathOf("test.log." + std::to_string(number) + ".bak"));
         ++number)
    {
        files.insert(files.begin(), "test.log." + std::to_string(number) + ".bak");
    }
    EXPECT_GT(files.size(), 20U);
    for (const std::string& file : files)
    {
        EXPECT_TRUE(folder.Read(file).starts_with("| Author  : A")) << file;
        EXPECT_LE(std::filesystem::file_size(folder.PathOf(file)), Maximum + LongestLine) << file;
    }
    for (int number = 0; number < Threads; ++number)
    {
        EXPECT_EQ(Numbers(files, "T" + std::to_string(number)), Range(0, LinesPerThread));
    }
}

TEST_F(LogStreamSplitTest, KeepsTheNewestFilesAndNoMoreThanTheCount)
{
    log.SetFileCount(0); // counts as 1
    WriteNumbered(0, 300, channel);
    EXPECT_TRUE(std::filesystem::exists(folder.PathOf("test.log.1.bak")));
    EXPECT_FALSE(std::filesystem::exists(folder.PathOf("test.log.2.bak")));

    log.SetFileCount(3);
    WriteNumbered(300, 700, channel);
    const std::vector<int> kept = Numbers({"test.log.3.bak", "test.log.2.bak", "test.log.1.bak", "test.log"}, "Main");
    EXPECT_EQ(kept, Range(1000 - static_cast<int>(kept.size()), static_cast<int>(kept.size())));
    EXPECT_GT(kept.size(), 100U);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 4);
}

TEST_F(LogStreamSplitTest, FailingSplitIsReportedNowAndThenAndBoundsTheFileUntilItWorks)
{
    log.SetFileCount(1);
    const std::string obstacle = folder.PathOf("test.log.1.bak"); // a folder cannot be replaced by a file
    std::filesystem::create_directories(obstacle + "/in the way");
    WriteNumbered(0, 60, channel);
    EXPECT_GT(LinesWith("LogStream").size(), 1U);
    EXPECT_LE(LinesWith("LogStream").size(), 16U);
    EXPECT_NE(LinesWith("LogStream").at(0).find("|E|$0x0000003A|Error splitting log file "), std::string::npos);
    EXPECT_EQ(Numbers({"test.log"}, "Main"), Range(0, 60));

    WriteNumbered(60, 940, channel);
    const std::size_t written = Numbers({"test.log"}, "Main").size();
    EXPECT_LT(std::filesystem::file_size(folder.PathOf("test.log")), 2 * Maximum + 2 * LongestLine);
    EXPECT_GT(std::filesystem::file_size(folder.PathOf("test.log")), 2 * Maximum);

    std::filesystem::remove_all(obstacle);
    WriteNumbered(1000, 20, channel);
    const std::vector<std::string> report = LinesWith(" lines lost: the file is full and cannot be split");
    ASSERT_EQ(report.size(), 1U);
    const std::size_t lost = std::stoul(report[0].substr(report[0].rfind('|') + 1));
    EXPECT_EQ(Numbers({"test.log.1.bak", "test.log"}, "Main").size() + lost, 1020U);
    EXPECT_EQ(Numbers({"test.log.1.bak"}, "Main").size(), written);
}

TEST_F(LogStreamSplitTest, FailingSplitDoesNotPushOutKeptFilesWhenItIsTriedAgain)
{
    log.SetFileCount(3);
    WriteNumbered(0, 300, channel);
    const std::string second = folder.Read("test.log.2.bak");
    std::filesystem::remove(folder.PathOf("test.log.1.bak"));
    std::filesystem::create_directories(folder.PathOf("test.log.1.bak/in the way"));
    std::filesystem::remove(folder.PathOf("test.log.3.bak"));
    std::filesystem::create_directories(folder.PathOf("test.log.3.bak/in the way"));
    WriteNumbered(300, 200, channel);

    EXPECT_EQ(folder.Read("test.log.2.bak"), second);
}

TEST_F(LogStreamSplitTest, FileThatOthersHaveTakenAwayIsJustStartedAnew)
{
    log.SetFileCount(3);
    std::filesystem::rename(folder.PathOf("test.log"), folder.PathOf("taken.log"));
    WriteNumbered(0, 60, channel);

    EXPECT_EQ(Numbers({"taken.log", "test.log"}, "Main"), Range(0, 60));
    EXPECT_FALSE(std::filesystem::exists(folder.PathOf("test.log.1.bak")));
}

TEST_F(LogStreamSplitTest, HeaderThatFillsAFileAloneDoesNotPushOutKeptFilesForNoLine)
{
    folder.Write("large.log.1.bak", "kept");
    LogStream large(String(folder.PathOf("large.log").c_str()), LogStreamLevel::Debug,
                    {"A", "C", String(std::string(2000, 'P').c_str())});
    large.SetMaximumSize(1);
    large.SetFileCount(1);
    large.Write(channel, "first", LogStreamLevel::Debug);
    EXPECT_EQ(folder.Read("large.log.1.bak"), "kept");
    large.Write(channel, "second", LogStreamLevel::Debug);
    EXPECT_TRUE(folder.ReadLines("large.log.1.bak").back().ends_with("|first"));
    EXPECT_TRUE(folder.ReadLines("large.log").back().ends_with("|second"));
}
