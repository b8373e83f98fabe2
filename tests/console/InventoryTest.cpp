#include "Inventory.h"

#include "DeviceDifferences.h"
#include "DeviceDocuments.h"
#include "InventoryReader.h"
#include "system/Exception.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Zent::Discovery::Console;
using DeviceDocuments::Document;
using DeviceDocuments::Message;
using DeviceDocuments::Nic;
using Kind = DeviceMessage::MessageKind;

namespace
{
std::string NamesOf(const Inventory& inventory)
{
    std::string names;
    for (const Device& device : inventory.Devices())
    {
        names += device.HostName + ";";
    }
    return names;
}

TEST(InventoryTest, ANewerMessageOfADeviceTakesThePlaceOfTheOlder)
{
    Inventory inventory;
    EXPECT_FALSE(inventory.Add(Device(Message(Kind::Hello, "before"))));
    // Sent from the other interface of the same device.
    DeviceMessage bye = Message(Kind::Bye, "after");
    bye.Document.insert(bye.Document.size() - 1, R"(,"SourceNIC":)" + Nic("02:00:00:00:00:02", "10.0.0.2"));
    const std::optional<Device> former = inventory.Add(Device(bye));
    ASSERT_TRUE(former);
    EXPECT_EQ(former->HostName, "before");
    inventory.Add(Device({Kind::Signature, R"({"Host":{"HostName":"no interface"}})"}));

    EXPECT_EQ(NamesOf(inventory), "after;no interface;");
    EXPECT_EQ(inventory.Devices()[0].MainInterface().IPAddress, "10.0.0.2");
}

TEST(InventoryTest, ForgetsWhoHasLeftAndThenTheOldest)
{
    const DeviceMessage::Clock::time_point now = DeviceMessage::Clock::now();
    Inventory inventory;
    for (const auto& [name, kind, age] :
         {std::tuple("a", Kind::Bye, 90), std::tuple("b", Kind::Bye, 30), std::tuple("c", Kind::Hello, 500),
          std::tuple("d", Kind::Signature, 400), std::tuple("e", Kind::Signature, 300)})
    {
        inventory.Add(Device({kind, Document(name, std::string("02:") + name, ""), now - std::chrono::seconds(age)}));
    }
    inventory.Forget(now - std::chrono::minutes(1), 4);
    EXPECT_EQ(NamesOf(inventory), "b;c;d;e;");
    inventory.Forget(now - std::chrono::minutes(1), 2);
    EXPECT_EQ(NamesOf(inventory), "b;e;");
}

TEST(InventoryReaderTest, TakesDocumentsHoweverTheyAreLaidOut)
{
    const std::string a = R"({"Message":"Signature","Time":"x",)" + Document("a}\\\"{", "02:01", "").substr(1);
    const std::string b = R"({"Message":"Hello",)" + Document("b", "02:02", "").substr(1);
    const std::string bye = R"({"Message":"Bye",)" + Document("b", "02:02", "").substr(1);
    for (const std::string& text :
         {a + "\n" + b + "\n", a + "\r\n" + b, "[" + a + "," + b + "]", "\n [\n" + a + " ,\n" + b + "\n]\n", a + b})
    {
        SCOPED_TRACE(text);
        EXPECT_EQ(NamesOf(InventoryReader::ReadText(text, "file")), "a}\"{;b;");
    }
    EXPECT_EQ(NamesOf(InventoryReader::ReadText(b + a + bye, "file")), "a}\"{;");
    EXPECT_EQ(NamesOf(InventoryReader::ReadText("", "file")), "");
    // As the documents of the library, so that they can be printed again.
    const Inventory inventory = InventoryReader::ReadText(b, "file");
    EXPECT_EQ(inventory.Devices()[0].Message.Document, Document("b", "02:02", ""));
}

TEST(InventoryReaderTest, NamesFileAndLineOfWhatIsNoResult)
{
    const std::string good = Document("a", "02:01", "") + "\n";
    for (const char* bad :
         {"text", "{}", "{\"Host\":1}", "{\"Host\":{", "{\"Host\":{}", "{\"Host\" {}}", "[[", "]", "1"})
    {
        SCOPED_TRACE(bad);
        try
        {
            InventoryReader::ReadText(good + bad, "saved.json");
            FAIL();
        }
        catch (const std::runtime_error& error)
        {
            EXPECT_TRUE(std::string(error.what()).starts_with("saved.json is no saved result: line 2: "))
                << error.what();
        }
    }
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
        EXPECT_THROW(Device({Kind::Hello, document}), Nfx::System::Exception);
    }
}
} // namespace
