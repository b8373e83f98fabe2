#include "Commands/InventoryReader.h"

#include "support/DeviceDocuments.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Zent::Discovery::Console;
using DeviceDocuments::Document;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceList;

namespace
{
std::string NamesOf(const DeviceList& inventory)
{
    std::string names;
    for (const Device& device : inventory.Devices())
    {
        names += device.HostName + ";";
    }
    return names;
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
    const DeviceList inventory = InventoryReader::ReadText(b, "file");
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
} // namespace
