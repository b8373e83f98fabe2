#include "CommandLine.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Zent::Discovery::Console;
using namespace std::chrono_literals;

namespace
{
std::optional<Options> Parse(const std::vector<std::string>& arguments, ExitStatus& status)
{
    std::ostringstream out;
    std::ostringstream errors;
    return CommandLine::Parse(arguments, out, errors, status);
}

TEST(CommandLineTest, OptionsMayStandBeforeAndBehindTheCommand)
{
    ExitStatus status{};
    const std::optional<Options> options =
        Parse({"--from", "10.0.0.1", "rename", "press 4", "--mac", "0:1:2:3:4:5", "--from", "10.0.1.1", "--wait",
               "0.25", "--log-level", "Debug", "--json"},
              status);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->Command, Options::CommandName::Rename);
    EXPECT_EQ(options->NewHostName, "press 4");
    EXPECT_EQ(options->MACAddress, "0:1:2:3:4:5");
    EXPECT_EQ(options->Session.LocalAddresses, (std::vector<std::string>{"10.0.0.1", "10.0.1.1"}));
    EXPECT_EQ(options->Wait, 250ms);
    EXPECT_EQ(options->Session.LogLevel, DiscoveryLogDebug);
    EXPECT_TRUE(options->Json);
}

TEST(CommandLineTest, InventoryCommandsTakeFilesAndASelection)
{
    ExitStatus status{};
    const std::optional<Options> options =
        Parse({"inventory", "diff", "a.json", "b.json", "--json", "--sort", "type", "--sort", "name:desc"}, status);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->Command, Options::CommandName::InventoryDiff);
    EXPECT_EQ(options->File, "a.json");
    EXPECT_EQ(options->LaterFile, "b.json");
    EXPECT_TRUE(options->Json);
}

TEST(CommandLineTest, ResultCodesAreReadAsUsersMeetThem)
{
    for (const auto& [text, code] : {std::pair("73", 73), std::pair("010", 10), std::pair("-1073151724", -1073151724),
                                     std::pair("0xC0090114", -1073151724), std::pair("3221815572", -1073151724)})
    {
        SCOPED_TRACE(text);
        ExitStatus status{};
        const std::optional<Options> options = Parse({"error", text}, status);
        ASSERT_TRUE(options);
        EXPECT_EQ(options->ErrorCode, code);
    }
}

TEST(CommandLineTest, ComplaintsNameTheProgramAndTheCause)
{
    for (const auto& [arguments, cause] :
         {std::pair(std::vector<std::string>{"frobnicate"}, "unknown command frobnicate"),
          std::pair(std::vector<std::string>{"--frobnicate"}, "unknown option --frobnicate"),
          std::pair(std::vector<std::string>{"inventory", "shew"}, "unknown command shew"),
          std::pair(std::vector<std::string>{"inventory"}, "a command is missing"),
          std::pair(std::vector<std::string>{}, "a command is missing"),
          std::pair(std::vector<std::string>{"inventory", "diff", "a.json"}, "AFTER"),
          std::pair(std::vector<std::string>{"discover", "--sort", "colour"}, "the columns are name, type"),
          std::pair(std::vector<std::string>{"watch", "--filter", "name"}, "COLUMN=PATTERN"),
          std::pair(std::vector<std::string>{"--log-level", "7"}, "critical, standard, debug and none"),
          std::pair(std::vector<std::string>{"discover", "--log-level", "7"}, "critical, standard, debug and none"),
          std::pair(std::vector<std::string>{"rename", "x", "--ip", "255.255.255.255"}, "the address of all devices")})
    {
        std::ostringstream out;
        std::ostringstream errors;
        ExitStatus status{};
        EXPECT_FALSE(CommandLine::Parse(arguments, out, errors, status));
        EXPECT_TRUE(errors.str().starts_with("discovery-console: ")) << errors.str();
        EXPECT_NE(errors.str().find(cause), std::string::npos) << errors.str();
    }
}

TEST(CommandLineTest, MisuseEndsWithTheUsageStatus)
{
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{},
                                               {"unknown"},
                                               {"discover", "extra"},
                                               {"refresh"},
                                               {"refresh", "0:1:2:3:4:5", "--sort", "name"},
                                               {"watch", "--every", "0"},
                                               {"discover", "--every", "5"},
                                               {"rename", "name"},
                                               {"rename", "name", "--mac", "0:1:2:3:4:5", "--ip", "10.0.0.1"},
                                               {"discover", "--wait", "-1"},
                                               {"discover", "--wait", "nan"},
                                               {"discover", "--expect", "0"},
                                               {"discover", "--expect", "-1"},
                                               {"discover", "--expect", "100001"},
                                               {"discover", "--log-level", "loud"},
                                               {"discover", "--log-level", "7"},
                                               {"rename", "name", "--ip", "255.255.255.0255"},
                                               {"error", "0x"},
                                               {"error", "4294967296"}})
    {
        ExitStatus status{};
        EXPECT_FALSE(Parse(arguments, status)) << testing::PrintToString(arguments);
        EXPECT_EQ(status, ExitStatus::Usage);
    }
    ExitStatus status = ExitStatus::Failure;
    EXPECT_FALSE(Parse({"rename", "--help"}, status));
    EXPECT_EQ(status, ExitStatus::Success);
}
} // namespace
