#include "endtoend/LargeDatagrams.h"

#include <random>

namespace Benchmarks
{
namespace
{
constexpr std::size_t LargestSize = 65507; // of a UDP datagram
constexpr std::size_t Rest = 2;            // what closes a document

/// The start, and the part as often as it fits before the end.
std::string Repeat(std::string start, const std::string& part, const std::string& end)
{
    while (start.size() + part.size() + end.size() <= LargestSize)
    {
        start += part;
    }
    return start + end;
}

std::string Noise()
{
    std::mt19937 random(1);
    std::string noise(LargestSize, '\0');
    for (char& byte : noise)
    {
        byte = static_cast<char>(random());
    }
    return noise;
}

/// A signature up to its file-transfer settings, whose keys differ in case alone.
std::string CasesOfOneKey()
{
    std::string text = Signature().Text();
    text.resize(text.find(R"("FileTransferInfos")"));
    text += R"("FileTransferInfos":{)";
    const std::string key = "aaaaaaaaaaaaaa";
    const std::string end = R"("z":""}}})";
    for (std::uint32_t bits = 0; text.size() + key.size() + 6 + end.size() <= LargestSize; ++bits)
    {
        std::string member = key;
        for (std::size_t letter = 0; letter < key.size(); ++letter)
        {
            member[letter] = (bits >> letter & 1) != 0 ? 'A' : 'a';
        }
        text += '"' + member + R"(":"",)";
    }
    return text + end;
}
} // namespace

std::vector<LargeDatagrams::Content> LargeDatagrams::All()
{
    const std::string head = R"({"DiscoveryMessageType":"SignatureBroadcast","DiscoveryVersion":"1.0.18","Host":{)";
    return {
        {"a signature", Valid().Text()},
        {"brackets", Repeat("", "[", "")},
        {"objects in objects", Repeat("", R"({"":)", "")},
        {"one string", Repeat(R"({"a":")", "a", R"("})")},
        {"backslashes", Repeat(R"({"a":")", R"(\\)", R"("})")},
        {"escapes without a meaning", Repeat(R"({"a":")", R"(\q)", R"("})")},
        {"code points", Repeat(R"({"a":")", R"(\u0041)", R"("})")},
        {"surrogates", Repeat(R"({"a":")", R"(\ud83d\ude00)", R"("})")},
        {"lone surrogates", Repeat(R"({"a":")", R"(\ud83d)", R"("})")},
        {"many members", Repeat(R"({"a":1)", R"(,"b":1)", "}")},
        {"many hosts' members", Repeat(head + R"("HostName":"x")", R"(,"hostnamE":"")", "}}")},
        {"many settings that are none",
         Repeat(R"({"DiscoveryMessageType":"ChangeYourIPConfig","DiscoveryVersion":"1.0.18","NewNICConfigs":[1)", ",1",
                "]}")},
        {"many interfaces", Repeat(head + R"("HostName":"x","DeviceType":"","NICs":[{})", ",{}", "]}}")},
        {"keys of many cases", CasesOfOneKey()},
        {"digits", Repeat(R"({"a":)", "9", "}")},
        {"a fraction", Repeat(R"({"a":0.)", "7", "}")},
        {"numbers", Repeat("[1", ",1e9", "]")},
        {"blanks", Repeat("{", " ", "}")},
        {"nothing", std::string(LargestSize, '\0')},
        {"noise", Noise()},
    };
}

Signature LargeDatagrams::Valid()
{
    std::size_t nics = 1;
    while (Signature(2 * nics, nics).Text().size() + Rest <= LargestSize)
    {
        nics += 8;
    }
    return Signature(2 * (nics - 8), nics - 8);
}
} // namespace Benchmarks
