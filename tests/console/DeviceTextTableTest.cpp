#include "Show/DeviceTextTable.h"

#include "Text/TerminalText.h"
#include "support/DeviceDocuments.h"

#include <gtest/gtest.h>

using namespace Zent::Discovery::Console;
using DeviceDocuments::Message;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceMessage;
using Kind = DeviceMessage::MessageKind;
using Lines = std::vector<std::string>;

namespace
{
const Colours None(false);

const char Details[] = R"("DeviceType":"Panel","DeviceFamily":"P300","SerialNumber":"4711","Products":[)"
                       R"({"ProductName":"Runtime","ProductVersion":"2.4"},)"
                       R"({"ProductName":"Visu","ProductVersion":"1.0"}],)";

TEST(DeviceTextTableTest, ColumnsAreAsWideAsTheirWidestText)
{
    DeviceTextTable table = DeviceTextTable::Snapshot();
    table.Add(Device(Message(Kind::Hello, "\u30D7\u30EC\u30B9e\u0301-12", Details)));
    table.Add(Device(Message(Kind::Bye, "Pr\u00FCfstand-12", Details)));
    EXPECT_EQ(table.Lines(None),
              (Lines{"HOST NAME     TYPE   FAMILY  SERIAL  MAC                IP        PRODUCTS               "
                     "LAST MESSAGE",
                     "\u30D7\u30EC\u30B9e\u0301-12    Panel  P300    4711    02:00:00:00:00:01  10.0.0.1  "
                     "Runtime 2.4, Visu 1.0  Hello",
                     "Pr\u00FCfstand-12  Panel  P300    4711    02:00:00:00:00:01  10.0.0.1  Runtime 2.4, Visu 1.0  "
                     "Bye"}));
}

TEST(DeviceTextTableTest, NarrowTerminalsLoseDetailsBeforeAddresses)
{
    DeviceTextTable table = DeviceTextTable::WithStates({});
    table.Add(Device(Message(Kind::Hello, "a name of a device that is rather long", Details)));
    for (const std::size_t width : {70u, 90u, 120u})
    {
        SCOPED_TRACE(width);
        const Lines lines = table.Lines(None, width);
        for (const std::string& line : lines)
        {
            EXPECT_LE(TerminalText::Width(line), width);
        }
        EXPECT_TRUE(lines[0].ends_with("LAST MESSAGE  AGE")) << lines[0];
        EXPECT_NE(lines[1].find("10.0.0.1  "), std::string::npos) << lines[1];
    }
    EXPECT_EQ(table.Lines(None, 3)[1], "...");
}

TEST(DeviceTextTableTest, TextsOfADeviceBreakNeitherLinesNorColumns)
{
    DeviceTextTable table = DeviceTextTable::Changes();
    table.Add(Device(Message(Kind::Signature, "a\\nb\\u001b[2J" + std::string(500, 'x'))), Style::Plain, "changed");
    table.AddNote("HostName: \x1B[2J" + std::string(5000, 'x'));
    for (const std::string& line : table.Lines(None))
    {
        EXPECT_EQ(line.find_first_of("\n\x1B"), std::string::npos);
        EXPECT_LT(line.size(), 420u);
    }
}

TEST(DeviceTextTableTest, OnlyColoursTheWholeOfARow)
{
    DeviceTextTable table = DeviceTextTable::Snapshot();
    table.Add(Device(Message(Kind::Bye, "press")), Style::Left);
    const Lines plain = table.Lines(None);
    const Lines coloured = table.Lines(Colours(true));
    EXPECT_EQ(coloured[0], "\x1B[1m" + plain[0] + "\x1B[0m");
    EXPECT_EQ(coloured[1], "\x1B[31m" + plain[1] + "\x1B[0m");
}
} // namespace
