#include "Inventory/DeviceList.h"

#include "Inventory/DeviceDifferences.h"
#include "support/DeviceDocuments.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Zent::Discovery::Inventory;
using DeviceDocuments::Document;
using DeviceDocuments::Message;
using DeviceDocuments::Nic;
using Kind = DeviceMessage::MessageKind;

namespace
{
std::string NamesOf(const DeviceList& list)
{
    std::string names;
    for (const Device& device : list.Devices())
    {
        names += device.HostName + ";";
    }
    return names;
}

TEST(DeviceListTest, ANewerMessageOfADeviceTakesThePlaceOfTheOlder)
{
    DeviceList list;
    EXPECT_FALSE(list.Add(Device(Message(Kind::Hello, "before"))));
    // Sent from the other interface of the same device.
    DeviceMessage bye = Message(Kind::Bye, "after");
    bye.Document.insert(bye.Document.size() - 1, R"(,"SourceNIC":)" + Nic("02:00:00:00:00:02", "10.0.0.2"));
    const std::optional<Device> former = list.Add(Device(bye));
    ASSERT_TRUE(former);
    EXPECT_EQ(former->HostName, "before");
    list.Add(Device({Kind::Signature, R"({"Host":{"HostName":"no interface"}})"}));

    EXPECT_EQ(NamesOf(list), "after;no interface;");
    EXPECT_EQ(list.Devices()[0].MainInterface().IPAddress, "10.0.0.2");
}

TEST(DeviceListTest, ForgetsWhoHasLeftAndThenTheOldest)
{
    const DeviceMessage::TimePoint now{std::chrono::hours(1000)};
    DeviceList list;
    for (const auto& [name, kind, age] :
         {std::tuple("a", Kind::Bye, 90), std::tuple("b", Kind::Bye, 30), std::tuple("c", Kind::Hello, 500),
          std::tuple("d", Kind::Signature, 400), std::tuple("e", Kind::Signature, 300)})
    {
        list.Add(Device({kind, Document(name, std::string("02:") + name, ""), now - std::chrono::seconds(age)}));
    }
    list.Forget(now - std::chrono::minutes(1), 4);
    EXPECT_EQ(NamesOf(list), "b;c;d;e;");
    list.Forget(now - std::chrono::minutes(1), 2);
    EXPECT_EQ(NamesOf(list), "b;e;");
}

std::string DifferencesBetween(const std::string& before, const std::string& after)
{
    std::string text;
    for (const DeviceDifferences::Difference& difference :
         DeviceDifferences::Between(Device({Kind::Signature, before}), Device({Kind::Hello, after})))
    {
        text += difference.ToString() + "\n";
    }
    return text;
}

TEST(DeviceDifferencesTest, TellsEachPropertyThatDiffers)
{
    const std::string one = R"({"ProductName":"One","ProductVersion":"1.0"})";
    const std::string two = R"({"ProductName":"Two","ProductVersion":"2.0"})";
    const std::string newOne = R"({"ProductName":"One","ProductVersion":"1.1"})";
    const std::string before = Document("a", "02:01", "10.0.0.1",
                                        R"("IsHostNameReadOnly":false,"Products":[)" + two + "," + one +
                                            R"(],"FileTransferInfos":{"Port":"22"},)");
    const std::string after =
        Document("b", "02:01", "", R"("IsHostNameReadOnly":true,"Products":[)" + newOne + "]," + R"("Note":"x",)");
    EXPECT_EQ(DifferencesBetween(before, after), "HostName: a -> b\n"
                                                 "IsHostNameReadOnly: false -> true\n"
                                                 "Products[One].ProductVersion: 1.0 -> 1.1\n"
                                                 "Products[Two]: removed " +
                                                     two +
                                                     "\n"
                                                     "FileTransferInfos: removed {\"Port\":\"22\"}\n"
                                                     "NICs[02:01].IPAddress: 10.0.0.1 -> \"\"\n"
                                                     "Note: added x\n");
}

TEST(DeviceDifferencesTest, OrderOfElementsAndTheSendingInterfaceAreNoDifference)
{
    const std::string host = R"({"Host":{"NICs":[)";
    const std::string a = Nic("02:01", "10.0.0.1");
    const std::string b = Nic("02:02", "10.0.0.2");
    const std::string source = R"(]},"SourceNIC":)";
    EXPECT_EQ(DifferencesBetween(host + a + "," + b + source + a + "}", host + b + "," + a + source + b + "}"), "");
    // Two elements may bear the same name.
    EXPECT_EQ(DifferencesBetween(host + a + "," + a + "]}}", host + a + "]}}"), "NICs[02:01#2]: removed " + a + "\n");
}

TEST(DeviceTest, RefusesWhatIsNotADocumentOfTheLibrary)
{
    for (const char* document : {"", "[]", "{}", R"({"Host":"text"})", R"({"Host":)"})
    {
        SCOPED_TRACE(document);
        EXPECT_THROW(Device({Kind::Hello, document}), std::invalid_argument);
    }
}
} // namespace
