#include "Support/Pseudonyms.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <utility>

namespace Zent::Discovery::Console
{
namespace
{
std::string Replaced(const std::string& text)
{
    Pseudonyms pseudonyms;
    pseudonyms.Learn(text);
    return pseudonyms.Replaced(text);
}

TEST(PseudonymsTest, AddressesStayInTheirNetworksAndNoPseudonymIsAnOriginal)
{
    Pseudonyms pseudonyms;
    pseudonyms.LearnNetwork(Inventory::Network::Parse("10.4.0.1/22"));
    pseudonyms.Learn(R"({"NICs":[{"IPAddress":"172.16.9.8","SubNetMask":"255.255.0.0"}]})");
    pseudonyms.Learn("10.4.3.7 10.4.0.1 192.168.1.20 192.168.1.1");
    for (const auto& [original, pseudonym] :
         {std::pair("[10.4.3.7]", "[10.4.0.2]"), std::pair("10.4.0.1:12000", "10.4.0.3:12000"),
          std::pair("ip=10.4.3.7/22", "ip=10.4.0.2/22"), std::pair("x192.168.1.20.", "x192.168.1.2."),
          std::pair("172.16.9.8", "172.16.0.1"), std::pair("010.004.003.007", "10.4.0.2"),
          // What is no single device, or no address at all.
          std::pair("127.0.0.1 255.255.252.0 239.1.2.3 0.0.0.0", "127.0.0.1 255.255.252.0 239.1.2.3 0.0.0.0"),
          std::pair("10.4.0.0 10.4.3.255 192.168.1.0", "10.4.0.0 10.4.3.255 192.168.1.0"),
          std::pair("1.0.18 300.1.2.3x 1.2.3", "1.0.18 300.1.2.3x 1.2.3"),
          std::pair(R"("ProductVersion":"2.5.0.1")", R"("ProductVersion":"2.5.0.1")")})
    {
        EXPECT_EQ(pseudonyms.Replaced(original), pseudonym);
    }

    Pseudonyms full; // two devices in a network for two
    full.LearnNetwork(Inventory::Network::Parse("10.0.0.1/30"));
    full.Learn("10.0.0.1 10.0.0.2");
    EXPECT_EQ(full.Replaced("10.0.0.1 10.0.0.2"), "10.0.0.2 10.0.0.1");
}

TEST(PseudonymsTest, MacAddressesKeepTheirMakersHalfInEverySpelling)
{
    EXPECT_EQ(Replaced("00:1A:2B:00:00:01 00-1a-2b-3c-4d-5e,00:1A:2B:3C:4D:5E x02:00:00:aa:bb:cc"),
              "00:1A:2B:00:00:02 00-1a-2b-00-00-03,00:1A:2B:00:00:03 x02:00:00:00:00:04");
    for (const char* const unchanged : {"00:00:00:00:00:00 FF:FF:FF:FF:FF:FF", "00:1A:2B:3C:4D", "00:1A-2B:3C:4D:5E"})
    {
        EXPECT_EQ(Replaced(unchanged), unchanged);
    }
}

TEST(PseudonymsTest, NamesAreFoundWhereverTheyStandAndWithinNoOtherWord)
{
    const std::string documents = R"({"HostName":"line-3"}{"hostname" : "line-30"}{"NewHostName":"line-3/oven"})"
                                  R"({"HostName":"on"}{"HostName":"name-1"}{"HostName":"10.0.0.9"})";
    Pseudonyms pseudonyms;
    pseudonyms.LearnName("anneliese");
    pseudonyms.Learn(documents);
    EXPECT_EQ(pseudonyms.Replaced("line-3/oven line-30 line-3."), "name-2 name-3 name-4.");
    EXPECT_EQ(pseudonyms.Replaced("LINE-3_x (line-3) online-3 line-31 name-1"),
              "name-4_x (name-4) online-3 line-31 name-5");
    EXPECT_EQ(pseudonyms.Replaced("/home/Anneliese/x on \"10.0.0.9\""), "/home/name-6/x on \"10.0.0.1\"");
    EXPECT_EQ(nlohmann::json::parse(pseudonyms.Map())["Names"]["name-2"], "line-3/oven");
}

TEST(PseudonymsTest, EscapedNamesAreFoundHoweverDeep)
{
    const std::string name = "M\u00FCller \"A\"\\\n\U0001F600";
    const nlohmann::json document = {{"HostName", name}};
    for (const bool asAscii : {false, true})
    {
        const std::string once = document.dump(-1, ' ', asAscii);
        const std::string twice = nlohmann::json(once).dump(-1, ' ', asAscii);
        const std::string thrice = nlohmann::json(twice).dump(-1, ' ', asAscii);
        for (const std::string& source : {once, twice, thrice})
        {
            Pseudonyms pseudonyms;
            pseudonyms.Learn("|Message : " + source);
            EXPECT_EQ(pseudonyms.Replaced(once), R"({"HostName":"name-1"})");
            EXPECT_EQ(pseudonyms.Replaced(twice), R"("{\"HostName\":\"name-1\"}")");
            EXPECT_EQ(pseudonyms.Replaced(thrice), R"("\"{\\\"HostName\\\":\\\"name-1\\\"}\"")");
            EXPECT_EQ(pseudonyms.Replaced("<" + name + "> M\u00FCller \"A\"\\\\x0a\U0001F600"), "<name-1> name-1");
        }
    }
    // Cut off, or not of JSON: nothing is learned beyond the text.
    for (const char* const broken : {R"({"HostName":"lin)", R"({"HostName":)", R"("HostName)", "\"HostName\":\"a\\"})
    {
        Replaced(broken);
    }
    EXPECT_EQ(Replaced(R"({"HostName":"press"}\npress)"), R"({"HostName":"name-1"}\nname-1)");
}
} // namespace
} // namespace Zent::Discovery::Console
