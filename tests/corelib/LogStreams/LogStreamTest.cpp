#include "system/LogStreams/LogStream.h"

#include "support/ExpectError.h"
#include "support/TemporaryFolder.h"
#include "system/ErrorCodes.h"
#include "system/Exceptions.h"
#include "system/LogStreams/LogStreamChannel.h"

#include <gtest/gtest.h>

#include <array>
#include <regex>

using namespace Nfx::System;
using namespace Nfx::System::LogStreams;
using Tests::TemporaryFolder;

namespace
{
constexpr std::size_t HeaderLines = 9;

class ScriptedRefTime final : public ILogStreamRefTime
{
public:
    std::int64_t Microseconds() const override { return Now; }

    std::int64_t Now = 0;
};

class LogStreamTest : public testing::Test
{
protected:
    SmartPointer<LogStream> Open(std::int32_t level)
    {
        return SmartPointer<LogStream>(new LogStream(String(folder.PathOf("test.log").c_str()), level,
                                                     {"The author", "The company", "Product 1.2"}));
    }

    /// What stands behind the header and the opening line, without date and reference time.
    std::vector<std::string> Events() const
    {
        std::vector<std::string> events;
        const std::vector<std::string> lines = folder.ReadLines("test.log");
        for (std::size_t i = HeaderLines + 1; i < lines.size(); ++i)
        {
            events.push_back(lines[i].substr(44));
        }
        return events;
    }

    const TemporaryFolder folder;
    const LogStreamChannel channel{"Receiver"};
    const std::string column = "Receiver" + std::string(32, ' ');
};
} // namespace

TEST_F(LogStreamTest, FileHasHeaderTitlesAndOneLineOfFixedColumnsPerEvent)
{
    const SmartPointer<LogStream> log = Open(LogStreamLevel::Debug);
    log->Write(channel, "first", LogStreamLevel::Critical);
    log->Write(channel, "second", LogStreamLevel::Standard);
    log->Write(channel, "third", LogStreamLevel::Debug);
    log->Close();

    const std::string time = R"(\|\d\d/\d\d/\d{4} \d\d:\d\d:\d\d\.\d{3}\|          0\.\d{6}\|)";
    const std::string name = column.substr(0, 40);
    const std::string patterns[] = {
        R"(\| Author  : The author)",
        R"(\| Company : The company)",
        R"(\| Product : Product 1\.2)",
        R"(\| Date    : \d{1,2}/\d\d/\d{4} \d\d:\d\d:\d\d)",
        R"(\| Path    : .*discovery-tests-\d+)",
        R"(\| File    : test\.log)",
        R"(\| Level   : Debug)",
        R"(\|Date                   \|RefTime           \|Channel                                 \|T\|Error      \|Message)",
        R"(\|-----------------------\|------------------\|----------------------------------------\|-\|-----------\|-------)",
        time + R"(Start {35}\|C\| {11}\|Start Log)",
        time + R"(Receiver {32}\|C\| {11}\|first)",
        time + R"(Receiver {32}\|S\| {11}\|second)",
        time + R"(Receiver {32}\|D\| {11}\|third)",
        time + R"(Close {35}\|C\| {11}\|Close Log)",
    };
    const std::vector<std::string> lines = folder.ReadLines("test.log");
    ASSERT_EQ(lines.size(), std::size(patterns));
    for (std::size_t i = 0; i < lines.size(); ++i)
    {
        EXPECT_TRUE(std::regex_match(lines[i], std::regex(patterns[i]))) << lines[i] << "\n" << patterns[i];
    }
}

TEST_F(LogStreamTest, LineIsWrittenWhenItsLevelIsNotAboveTheStreams)
{
    using enum_t = std::int32_t;
    const std::array<enum_t, 4> levels = {LogStreamLevel::Critical, LogStreamLevel::Standard, LogStreamLevel::Debug,
                                          LogStreamLevel::None};
    const std::string written[] = {"C", "CS", "CSD", ""};
    for (std::size_t i = 0; i < levels.size(); ++i)
    {
        std::filesystem::remove(folder.PathOf("test.log"));
        const SmartPointer<LogStream> log = Open(levels[i]);
        std::string types;
        std::string enabled;
        for (const enum_t level : levels)
        {
            log->Write(channel, "text", level);
            enabled += log->IsEnabled(level) ? "1" : "0";
        }
        for (const std::string& event : Events())
        {
            types += event[41];
        }
        EXPECT_EQ(types, written[i]);
        EXPECT_EQ(enabled, std::string(types.size(), '1') + std::string(4 - types.size(), '0'));
    }
}

TEST_F(LogStreamTest, NothingInATextEndsOrForgesALine)
{
    const SmartPointer<LogStream> log = Open(LogStreamLevel::Debug);
    log->Write(LogStreamChannel("A\tB"), String("x\r\n|y\0z\x1B[31m\x7F \xC3\xA9\xFF", 17), LogStreamLevel::Debug);
    const LogStreamChannel longChannel("A channel whose name is longer than its column is wide");
    log->Write(longChannel, "whole", LogStreamLevel::Debug);

    EXPECT_EQ(Events(), (std::vector<std::string>{"A\\x09B" + std::string(34, ' ') +
                                                      "|D|           |x\\x0D\\x0A|y\\x00z\\x1B[31m\\x7F \xC3\xA9\xFF",
                                                  longChannel.Name().CString() + std::string("|D|           |whole")}));
}

TEST_F(LogStreamTest, ReferenceTimeIsInSecondsAndAlignedRight)
{
    ScriptedRefTime* const time = new ScriptedRefTime();
    const SmartPointer<ILogStreamRefTime> refTime(time);
    LogStream log(String(folder.PathOf("test.log").c_str()), LogStreamLevel::Debug, {"", "", ""}, refTime);
    const std::pair<std::int64_t, std::string> times[] = {{0, "          0.000000"},
                                                          {42, "          0.000042"},
                                                          {59'999'999, "         59.999999"},
                                                          {31'536'000'000'001, "   31536000.000001"}};
    for (const auto& [now, text] : times)
    {
        time->Now = now;
        log.Write(channel, "text", LogStreamLevel::Debug);
        EXPECT_EQ(folder.ReadLines("test.log").back().substr(25, 18), text);
    }
}

TEST_F(LogStreamTest, LevelChangeIsWrittenAndTakesEffect)
{
    const SmartPointer<LogStream> log = Open(LogStreamLevel::None);
    log->ChangeLevel(LogStreamLevel::Standard);
    log->Write(channel, "shown", LogStreamLevel::Standard);
    log->ChangeLevel(LogStreamLevel::None);
    log->Write(channel, "hidden", LogStreamLevel::Critical);
    EXPECT_ERROR(log->ChangeLevel(4), ErrorCodes::ArgumentOutOfRange);
    EXPECT_ERROR(Open(4), ErrorCodes::ArgumentOutOfRange);

    const std::string blank(11, ' ');
    const std::string level =
        "Level" + std::string(35, ' ') + "|C|" + blank + "|--------- Change log stream level from ";
    EXPECT_EQ(Events(),
              (std::vector<std::string>{level + "None to Standard ---------", column + "|S|" + blank + "|shown",
                                        level + "Standard to None ---------"}));
}

TEST_F(LogStreamTest, BytesAndValuesAreWrittenInHexadecimal)
{
    const SmartPointer<LogStream> log = Open(LogStreamLevel::Debug);
    const std::string bytes = "GET /index.html \x01\xFF";
    log->WriteBytes(channel, "18 bytes", reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(),
                    LogStreamLevel::Debug);
    log->WriteValue(channel, "Mask", 0xFEDC'BA98'7654'3210, LogStreamLevel::Debug);
    log->WriteBytes(channel, "nothing", nullptr, 0, LogStreamLevel::Debug);
    EXPECT_ERROR(log->WriteBytes(channel, "null", nullptr, 1, LogStreamLevel::Debug), ErrorCodes::ArgumentNull);

    const std::string start = column + "|D|           |";
    EXPECT_EQ(Events(), (std::vector<std::string>{
                            start + "18 bytes",
                            start + "00000000  47 45 54 20 2F 69 6E 64 65 78 2E 68 74 6D 6C 20  GET /index.html ",
                            start + "00000010  01 FF" + std::string(14 * 3, ' ') + "  ..",
                            start + "Mask 0xFEDCBA9876543210", start + "nothing"}));
}

TEST_F(LogStreamTest, ExistingFileIsContinuedOnALineOfItsOwn)
{
    folder.Write("test.log", "an earlier process was stopped here");
    Open(LogStreamLevel::Critical)->Close();
    Open(LogStreamLevel::Critical)->Close();

    const std::vector<std::string> lines = folder.ReadLines("test.log");
    ASSERT_EQ(lines.size(), 1 + HeaderLines + 2 + 1 + HeaderLines + 2);
    EXPECT_EQ(lines[0], "an earlier process was stopped here");
    EXPECT_EQ(lines[1], "| Author  : The author");
    EXPECT_EQ(lines[HeaderLines + 3], "");
    EXPECT_EQ(lines[HeaderLines + 4], "| Author  : The author");
}

TEST_F(LogStreamTest, ClosedStreamWritesNothingAndLeavesTheFileAlone)
{
    const SmartPointer<LogStream> log = Open(LogStreamLevel::Debug);
    log->Close();
    const std::string before = folder.Read("test.log");
    log->Write(channel, "late", LogStreamLevel::Critical);
    log->Write(channel, "late", Exception("Sources/Some", 1));
    log->Close();
    EXPECT_ERROR(log->ChangeLevel(LogStreamLevel::Debug), ErrorCodes::ObjectClosed);

    EXPECT_EQ(folder.Read("test.log"), before);
    EXPECT_FALSE(log->IsEnabled(LogStreamLevel::Critical));
}

TEST_F(LogStreamTest, FileThatCannotBeOpenedIsNamedWithTheReason)
{
    const std::string missing = folder.PathOf("missing") + "/test.log";
    try
    {
        LogStream(String(missing.c_str()), LogStreamLevel::Debug, {"", "", ""});
        FAIL();
    }
    catch (const IO::DirectoryNotFoundException& exception)
    {
        const std::string message = exception.GetMessage().CString();
        EXPECT_TRUE(std::regex_match(message, std::regex(R"(cannot open ".*missing.test\.log": [A-Z].*[a-z])")))
            << message;
    }
    EXPECT_ERROR(LogStream(String(folder.Path().c_str()), LogStreamLevel::Debug, {"", "", ""}), ErrorCodes::IO);
    EXPECT_THROW(LogStream("", LogStreamLevel::Debug, {"", "", ""}), IO::IOException);
}
