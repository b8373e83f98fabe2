#include "Show/Output.h"

#include "Text/TextFile.h"
#include "support/DeviceDocuments.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Zent::Discovery::Console;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceMessage;

namespace
{
TEST(OutputTest, TheStatusMakesWayForEverythingElse)
{
    std::ostringstream out;
    std::ostringstream errors;
    {
        Output output(out, errors, {.ErrorsAreTerminal = true});
        output.ShowStatus("waiting");
        output.Complain("late\n");
        output.ShowStatus("waiting");
    }
    const std::string erase = "\r\x1B[K";
    const std::size_t complaint = errors.str().find("late\\x0A\n");
    ASSERT_NE(complaint, std::string::npos) << errors.str();
    EXPECT_LT(errors.str().find("waiting"), errors.str().rfind(erase, complaint));
    EXPECT_TRUE(errors.str().ends_with(erase)) << errors.str();
}

TEST(OutputTest, NothingButTextGoesToAFile)
{
    std::ostringstream out;
    std::ostringstream errors;
    Output output(out, errors, {});
    const Device device(DeviceDocuments::Message(DeviceMessage::MessageKind::Bye, "press"));
    output.ShowStatus("waiting");
    output.Show(device);
    output.Complain("late");
    output.Conclude("1 device found");
    EXPECT_EQ(errors.str(), "discovery-console: late\n1 device found\n");
    EXPECT_EQ(out.str().find('\x1B'), std::string::npos) << out.str();
}

TEST(OutputTest, ScriptsReadDocumentsAlone)
{
    std::ostringstream out;
    std::ostringstream errors;
    Output output(out, errors, {.Json = true});
    Device device(DeviceDocuments::Message(DeviceMessage::MessageKind::Bye, "press"));
    device.Message.Received = DeviceMessage::TimePoint(std::chrono::milliseconds(1078928589007));
    output.Show(device);
    output.Conclude("1 device found");
    EXPECT_EQ(out.str(),
              R"({"Message":"Bye","Time":"2004-03-10T14:23:09.007Z",)" + device.Message.Document.substr(1) + "\n");
    EXPECT_EQ(errors.str(), "");
}

TEST(OutputTest, SpreadsheetsGetWholeTextsAndNoFormulas)
{
    std::ostringstream out;
    std::ostringstream errors;
    Output output(out, errors, {.Csv = true});
    output.Show({});
    for (const auto& [name, cell] : {std::pair(R"(=1+1)", "'=1+1"),
                                     {R"( @a)", "' @a"},
                                     {R"(-a;\"b\", c)", R"("'-a;""b"", c")"},
                                     {R"(+\n\r\t)", R"('+\x0A\x0D\x09)"},
                                     {R"(a=1)", "a=1"}})
    {
        out.str("");
        output.ShowNow(Device(DeviceDocuments::Message(DeviceMessage::MessageKind::Bye, name)));
        EXPECT_EQ(out.str(), cell + std::string(",,,,02:00:00:00:00:01,10.0.0.1,,Bye,\n"));
    }
    out.str("");
    const std::string longName(500, 'x');
    output.Show(Device(DeviceDocuments::Message(DeviceMessage::MessageKind::Bye, longName)));
    EXPECT_TRUE(out.str().starts_with(longName + ",")) << out.str();
    output.Conclude("1 device found");
    EXPECT_EQ(errors.str(), "");
}
} // namespace
