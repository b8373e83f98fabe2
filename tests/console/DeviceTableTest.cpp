#include "DeviceTable.h"

#include "system/Exception.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

using namespace Zent::Discovery::Console;

namespace
{
std::string Nic(const std::string& mac, const std::string& ip)
{
    return R"({"MACAddress":")" + mac + R"(","IPAddress":")" + ip + R"("})";
}

/// A device with the interfaces 02:..:01 at 10.0.0.1 and 02:..:02 at 10.0.0.2; members go between host and interfaces.
DeviceMessage Message(DeviceMessage::MessageKind kind, const std::string& name, const std::string& members = "")
{
    return {kind, R"({"Host":{"HostName":")" + name + R"(",)" + members + R"("NICs":[)" +
                      Nic("02:00:00:00:00:01", "10.0.0.1") + "," + Nic("02:00:00:00:00:02", "10.0.0.2") + "]}}"};
}

std::string Print(const DeviceTable& table)
{
    std::ostringstream out;
    table.Print(out);
    return out.str();
}

TEST(DeviceTableTest, ColumnsAreAsWideAsTheirWidestText)
{
    DeviceTable table;
    table.Add(Device(Message(DeviceMessage::MessageKind::Hello,
                             "Pr\xC3\xBC"
                             "fstand-12",
                             R"("DeviceType":"Panel","DeviceFamily":"P300","SerialNumber":"4711","Products":[)"
                             R"({"ProductName":"Runtime","ProductVersion":"2.4"},)"
                             R"({"ProductName":"Visu","ProductVersion":"1.0"}],)")));
    EXPECT_EQ(Print(table),
              "HOST NAME     TYPE   FAMILY  SERIAL  MAC                IP        PRODUCTS               LAST MESSAGE\n"
              "Pr\xC3\xBC"
              "fstand-12  Panel  P300    4711    02:00:00:00:00:01  10.0.0.1  Runtime 2.4, Visu 1.0  Hello\n");
}

TEST(DeviceTableTest, ANewerMessageOfADeviceTakesThePlaceOfTheOlder)
{
    DeviceTable table;
    table.Add(Device(Message(DeviceMessage::MessageKind::Hello, "before")));
    // Sent from the other interface of the same device.
    DeviceMessage bye = Message(DeviceMessage::MessageKind::Bye, "after");
    bye.Document.insert(bye.Document.size() - 1, R"(,"SourceNIC":)" + Nic("02:00:00:00:00:02", "10.0.0.2"));
    table.Add(Device(bye));
    table.Add(Device({DeviceMessage::MessageKind::Signature, R"({"Host":{"HostName":"no interface"}})"}));

    ASSERT_EQ(table.Devices().size(), 2u);
    EXPECT_EQ(table.Devices()[0].HostName, "after");
    EXPECT_EQ(table.Devices()[0].MainInterface().IPAddress, "10.0.0.2");
    EXPECT_EQ(table.Devices()[1].HostName, "no interface");
}

TEST(DeviceTableTest, TextsOfADeviceBreakNeitherLinesNorColumns)
{
    DeviceTable table;
    table.Add(Device(Message(DeviceMessage::MessageKind::Signature, "a\\nb\\u001b[2J" + std::string(500, 'x'))));
    const std::string text = Print(table);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2);
    EXPECT_EQ(text.find('\x1B'), std::string::npos);
    EXPECT_LT(text.size(), 400u);
}

TEST(DeviceTest, RefusesWhatIsNotADocumentOfTheLibrary)
{
    for (const char* document : {"", "[]", "{}", R"({"Host":"text"})", R"({"Host":)"})
    {
        SCOPED_TRACE(document);
        EXPECT_THROW(Device({DeviceMessage::MessageKind::Hello, document}), Nfx::System::Exception);
    }
}
} // namespace
