#include "Inventory/DeviceSelection.h"

#include "Inventory/NaturalOrder.h"
#include "support/DeviceDocuments.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Zent::Discovery::Inventory;
using DeviceDocuments::Document;

namespace
{
std::vector<Device> Devices()
{
    std::vector<Device> devices;
    for (const auto& [name, mac, ip, type] : {std::tuple("press-10", "02:00:00:00:00:1F", "10.0.0.9", "Panel"),
                                              std::tuple("Press-9", "02:00:00:00:00:10", "10.0.0.30", "Drive"),
                                              std::tuple("\u00E9tuve-1", "02:00:00:00:00:0A", "9.255.0.1", "Panel")})
    {
        devices.push_back(Device({DeviceMessage::MessageKind::Hello,
                                  Document(name, mac, ip, R"("DeviceType":")" + std::string(type) + R"(",)")}));
    }
    return devices;
}

/// The last characters of the selected devices' names.
std::string Selected(const std::vector<std::string>& filters, const std::vector<std::string>& orders)
{
    DeviceSelection selection;
    for (const std::string& filter : filters)
    {
        selection.AddFilter(filter);
    }
    for (const std::string& order : orders)
    {
        selection.AddOrder(order);
    }
    std::string result;
    const std::vector<Device> devices = Devices();
    for (const Device* device : selection.Of(devices, {}))
    {
        result += device->HostName.back();
    }
    return result;
}

TEST(DeviceSelectionTest, SortsColumnsAsPeopleReadThem)
{
    EXPECT_EQ(Selected({}, {}), "091");
    EXPECT_EQ(Selected({}, {"name"}), "901");
    EXPECT_EQ(Selected({}, {"name:desc"}), "109");
    EXPECT_EQ(Selected({}, {"ip"}), "109");
    EXPECT_EQ(Selected({}, {"mac"}), "190");
    EXPECT_EQ(Selected({}, {"type", "name:desc"}), "910");
}

TEST(DeviceSelectionTest, FilterPatternsMatchWholeTextsInEitherCase)
{
    for (const auto& [filter, expected] :
         {std::pair("name=PRESS*", "09"), std::pair("name=press", ""), std::pair("name!=press*", "1"),
          std::pair("name=?tuve-1", "1"), // one character, not one byte
          std::pair("name=*s*-?", "9"), std::pair("type=panel", "01"), std::pair("ip=10.0.0.*", "09"),
          std::pair("family=", "091"), std::pair("family=?*", ""), std::pair("message=hello", "091")})
    {
        SCOPED_TRACE(filter);
        EXPECT_EQ(Selected({filter}, {}), expected);
    }
    EXPECT_EQ(Selected({"type=panel", "name=press*"}, {}), "0");
}

TEST(DeviceSelectionTest, PatternsAreHeldAgainstWhatIsShown)
{
    DeviceSelection selection([](std::string_view text) { return "<" + std::string(text) + ">"; });
    selection.AddFilter("name=<Press-?>");
    const std::vector<Device> devices = Devices();
    EXPECT_EQ(selection.Of(devices, {}), (std::vector<const Device*>{&devices[1]}));
}

TEST(DeviceColumnTest, AgesHaveOneUnit)
{
    using namespace std::chrono_literals;
    for (const auto& [age, text] : {std::pair<std::chrono::milliseconds, const char*>(-5s, "0 s"),
                                    {59999ms, "59 s"},
                                    {60s, "1 min"},
                                    {3599s, "59 min"},
                                    {24h - 1s, "23 h"},
                                    {240h, "10 d"}})
    {
        EXPECT_EQ(DeviceColumn::AgeText(age), text);
    }
}

TEST(DeviceSelectionTest, AgesAreSortedByTimeNotByText)
{
    std::vector<Device> devices = Devices();
    const DeviceMessage::TimePoint now{std::chrono::hours(1000)};
    devices[0].Message.Received = now - std::chrono::seconds(30);
    devices[1].Message.Received = now - std::chrono::hours(2);
    devices[2].Message.Received = now - std::chrono::minutes(5);
    DeviceSelection selection;
    selection.AddOrder("age:desc");
    EXPECT_EQ(selection.Of(devices, now), (std::vector<const Device*>{&devices[1], &devices[2], &devices[0]}));
    selection.AddFilter("age=* min");
    EXPECT_EQ(selection.Of(devices, now), (std::vector<const Device*>{&devices[2]}));
}

TEST(DeviceSelectionTest, RefusalsNameTheColumns)
{
    DeviceSelection selection;
    for (const char* text : {"colour", "", "Name", "name:up"})
    {
        EXPECT_THROW(selection.AddOrder(text), std::invalid_argument) << text;
    }
    for (const char* text : {"colour=red", "name", "=x", "!=x"})
    {
        EXPECT_THROW(selection.AddFilter(text), std::invalid_argument) << text;
    }
    try
    {
        selection.AddOrder("colour");
    }
    catch (const std::invalid_argument& error)
    {
        EXPECT_NE(std::string(error.what()).find("name, type, family"), std::string::npos);
    }
}
} // namespace
