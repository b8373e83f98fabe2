#include "Recording.h"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace Zent::Discovery::Simulator
{
namespace
{
using namespace std::chrono_literals;

TEST(RecordingTest, KeepsTextsAndBytesAndNamesTheLineThatIsWrong)
{
    const RecordedDatagram text{12ms, "10.0.0.9", "{\"Name\":\"\u00FC\"}\n"};
    const RecordedDatagram bytes{1500ms, "10.0.0.10", std::string("{\0\xFF", 3)};
    const std::string file = Recording::LineOf(text) + "\r\n\n" + Recording::LineOf(bytes) + "\n";
    EXPECT_EQ(Recording::Parse(file, "file"), (std::vector{text, bytes}));

    const std::string opening = R"({"Seconds":1,"Sender":"10.0.0.9",)";
    for (const auto& [line, reason] :
         {std::pair(opening, "no JSON document from column 34 on"),
          std::pair(opening + "\"x\":1}", "not an object with"), std::pair(std::string("7"), "not an object with"),
          std::pair(opening + R"("Bytes":"7b7"})", "\"Bytes\" are not"),
          std::pair(std::string(R"({"Seconds":-1,"Sender":"10.0.0.9","Text":""})"), "\"Seconds\" is not"),
          std::pair(std::string(R"({"Seconds":1,"Sender":"10.0.0","Text":""})"), "\"Sender\" is \"10.0.0\"")})
    {
        SCOPED_TRACE(line);
        try
        {
            Recording::Parse(Recording::LineOf(text) + "\n" + line, "file");
            ADD_FAILURE();
        }
        catch (const std::runtime_error& error)
        {
            EXPECT_TRUE(
                std::string_view(error.what()).starts_with("recording \"file\", line 2: " + std::string(reason)))
                << error.what();
        }
    }
    EXPECT_THROW(Recording::Parse(" \n", "file"), std::runtime_error);
}
} // namespace
} // namespace Zent::Discovery::Simulator
