#include "Commands/InventoryReader.h"

#include "Programs/TimeText.h"
#include "Programs/WrongArgument.h"
#include "support/DeviceDocuments.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Zent::Discovery::Console;
using DeviceDocuments::Document;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceList;
using Zent::Discovery::Programs::TimeText;
using Zent::Discovery::Programs::WrongArgument;

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
    const std::string a = R"({"Message":"Signature",)" + Document("a}\\\"{", "02:01", "").substr(1);
    const std::string b = R"({"Message":"Hello",)" + Document("b", "02:02", "").substr(1);
    const std::string bye = R"({"Message":"Bye",)" + Document("b", "02:02", "").substr(1);
    for (const std::string& text :
         {a + "\n" + b + "\n", a + "\r\n" + b, "[" + a + "," + b + "]", "\n [\n" + a + " ,\n" + b + "\n]\n", a + b})
    {
        SCOPED_TRACE(text);
        EXPECT_EQ(NamesOf(InventoryReader::ReadText(text, "file")), "a}\"{;b;");
    }
    EXPECT_EQ(NamesOf(InventoryReader::ReadText(b + a + bye, "file")), "a}\"{;");
    const std::string missing = R"({"Change":"Missing",)" + Document("c", "02:03", "").substr(1);
    EXPECT_EQ(NamesOf(InventoryReader::ReadText(b + missing, "file")), "b;");
    EXPECT_EQ(NamesOf(InventoryReader::ReadText("[]", "file")), "");
    // As the documents of the library, so that they can be printed again.
    const DeviceList inventory = InventoryReader::ReadText(b, "file");
    EXPECT_EQ(inventory.Devices()[0].Message.Document, Document("b", "02:02", ""));
}

TEST(InventoryReaderTest, KeepsTheTimeOfTheMessage)
{
    const auto timeOf = [](const std::string& text) {
        const std::string document = R"({"Time":)" + text + "," + Document("a", "02:01", "").substr(1);
        return InventoryReader::ReadText(document, "file").Devices()[0].Message.Received;
    };
    EXPECT_EQ(TimeText::Utc(timeOf(R"("2026-02-28T23:59:58.007Z")")), "2026-02-28T23:59:58.007Z");
    for (const char* const bad : {"1", R"("")", R"("2026-02-30T00:00:00.000Z")", R"("2026-99-01T00:00:00.000Z")"})
    {
        EXPECT_THROW(timeOf(bad), WrongArgument) << bad;
    }
}

TEST(InventoryReaderTest, NamesThePlaceOfWhatIsNoResult)
{
    const std::string good = Document("a", "02:01", "") + "\n";
    for (const auto& [bad, place] : {std::pair("text", "2, column 1: no JSON object"),
                                     {" {}", "2, column 2: the document has no \"Host\""},
                                     {"{\"Host\":1}", "2, column 1: the document has no \"Host\""},
                                     {"{\"Host\":{\n", "3, column 1: syntax error"},
                                     {"{\"Host\" {}}", "2, column 9: syntax error"},
                                     {"[[", "2, column 1: no JSON object"},
                                     {R"({"Message":"Ciao","Host":{}})", R"(2, column 1: "Message" is none of)"},
                                     {R"({"Host":{"HostName":1}})", R"(2, column 1: "Host.HostName" is no text: 1)"},
                                     {R"({"Host":{"NICs":[{},{"IPAddress":"10.0.0.300"}]}})",
                                      R"(2, column 1: "Host.NICs[1].IPAddress" is no IPv4 address: "10.0.0.300")"}})
    {
        SCOPED_TRACE(bad);
        try
        {
            InventoryReader::ReadText(good + bad, "saved.json");
            FAIL();
        }
        catch (const std::runtime_error& error)
        {
            EXPECT_TRUE(std::string(error.what()).starts_with(std::string("saved.json: line ") + place))
                << error.what();
        }
    }
    EXPECT_THROW(InventoryReader::ReadText("[" + good + good + "]", "file"), std::runtime_error);
    EXPECT_THROW(InventoryReader::ReadText(" \n", "file"), WrongArgument);
}
} // namespace
