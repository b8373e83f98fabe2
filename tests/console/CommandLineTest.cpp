#include "Commands/CommandLine.h"

#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <string>
#include <vector>

using namespace Zent::Discovery::Console;
using namespace std::chrono_literals;

namespace
{
/// How the program would end, had it nothing to do but to read its arguments; nothing when it goes on.
std::optional<ExitStatus> EndAfter(const std::vector<std::string>& arguments)
{
    std::ostringstream out;
    std::ostringstream errors;
    ExitStatus status{};
    return CommandLine().Parse(arguments, out, errors, status) == nullptr ? std::optional(status) : std::nullopt;
}

TEST(CommandLineTest, OptionsMayStandBeforeAndBehindTheCommand)
{
    CommandLine line;
    std::ostringstream out;
    ExitStatus status{};
    ASSERT_NE(line.Parse({"--from", "10.0.0.1", "rename", "press 4", "--mac", "0:1:2:3:4:5", "--from", "10.0.1.1",
                          "--wait", "0.25", "--log-level", "Debug", "--json"},
                         out, out, status),
              nullptr);
    EXPECT_EQ(line.Options().Session.Interfaces.Addresses, (std::vector<std::string>{"10.0.0.1", "10.0.1.1"}));
    EXPECT_EQ(line.Options().Wait, 250ms);
    EXPECT_EQ(line.Options().Session.LogLevel, DiscoveryLogDebug);
    EXPECT_TRUE(line.Options().Json);
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
          std::pair(std::vector<std::string>{"error", "73", "--csv"}, "--csv: this command shows no table"),
          std::pair(std::vector<std::string>{"discover", "--expect", "2.5"},
                    "\"2.5\" is not a whole number of devices"),
          std::pair(std::vector<std::string>{"--log-level", "7"}, "critical, standard, debug and none"),
          std::pair(std::vector<std::string>{"discover", "--log-level", "7"}, "critical, standard, debug and none"),
          std::pair(std::vector<std::string>{"rename", "x", "--ip", "255.255.255.255"}, "the address of all devices")})
    {
        std::ostringstream out;
        std::ostringstream errors;
        ExitStatus status{};
        EXPECT_EQ(CommandLine().Parse(arguments, out, errors, status), nullptr);
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
                                               {"discover", "--from", "10.0.0.1", "--interface", "eth0"},
                                               {"refresh", "0:1:2:3:4:5", "--sort", "name"},
                                               {"watch", "--every", "0"},
                                               {"discover", "--every", "5"},
                                               {"rename", "name"},
                                               {"rename", "name", "--mac", "0:1:2:3:4:5", "--ip", "10.0.0.1"},
                                               {"discover", "--json", "--csv"},
                                               {"discover", "--wait", "-1"},
                                               {"discover", "--wait", "nan"},
                                               {"discover", "--expect", "0"},
                                               {"discover", "--expect", "-1"},
                                               {"discover", "--expect", "100001"},
                                               {"discover", "--also", "10.0.0.0/8"},
                                               {"discover", "--log-level", "loud"},
                                               {"discover", "--log-level", "7"},
                                               {"rename", "name", "--ip", "255.255.255.0255"},
                                               {"error", "0x"},
                                               {"error", "4294967296"}})
    {
        EXPECT_EQ(EndAfter(arguments), ExitStatus::Usage) << testing::PrintToString(arguments);
    }
    EXPECT_EQ(EndAfter({"rename", "--help"}), ExitStatus::Success);
    for (const char* code : {"73", "010", "-1073151724", "0xC0090114", "3221815572"})
    {
        EXPECT_EQ(EndAfter({"error", code}), std::nullopt) << code;
    }
    EXPECT_EQ(EndAfter({"inventory", "diff", "a.json", "b.json", "--sort", "type", "--sort", "name:desc"}),
              std::nullopt);
}
} // namespace
