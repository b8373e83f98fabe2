#include "Json/JSONArray.h"
#include "Json/JSONObject.h"
#include "support/ExpectError.h"
#include "support/SmallStack.h"
#include "system/ErrorCodes.h"
#include "system/Memory.h"

#include <gtest/gtest.h>

#include <string>

using Nfx::System::Memory;
using Nfx::System::String;
using Zent::Utils::Json::JSONArray;
using Zent::Utils::Json::JSONObject;
namespace ErrorCodes = Nfx::System::ErrorCodes;
using namespace std::string_literals;

namespace
{
constexpr std::size_t LargestDatagram = 65507;

std::string Repeat(const std::string& part, std::size_t times)
{
    std::string result;
    for (std::size_t round = 0; round < times; ++round)
    {
        result += part;
    }
    return result;
}

/// Reads and writes a text.
std::string Rewrite(const std::string& text)
{
    return std::string(JSONObject(String(text)).ToString().View());
}

TEST(JSONTextTest, AcceptsWhatIsNoFault)
{
    const std::pair<std::string, const char*> cases[] = {
        {"{}", "{}"},
        {"\x01\x1F \t\r\n{\x02\"a\"\x03:\x04[\x05]\x06}", "{\"a\":[]}"}, // bytes up to 32 separate
        {"{} {\"a\":1}", "{}"},
        {"{}}]garbage\\u12", "{}"},
        {"{\"a\":null}\0\0\0"s, "{\"a\":null}"},
        {"{}\0{"s, "{}"},
        {"{\"a\":{\"a\":{}},\"a\":[[],{}]}", "{\"a\":{\"a\":{}},\"a\":[[],{}]}"},
        {"{\"a\":\"\x01\n\x7F\xFF\xC3\"}", "{\"a\":\"\\u0001\\n\x7F\xFF\xC3\"}"},
    };
    for (const auto& [text, expected] : cases)
    {
        SCOPED_TRACE(text);
        EXPECT_EQ(Rewrite(text), expected);
    }
}

TEST(JSONTextTest, RefusesMalformedTexts)
{
    const std::string mark = "\xEF\xBB\xBF"; // the byte order mark of UTF-8
    const std::string cases[] = {
        "",          " ",         "null",           "[1,2]",      "\"a\"",        "{",        "}",
        "{\"a\"}",   "{\"a\":}",  "{\"a\":1,}",     "{,}",        "{a:1}",        "{'a':1}",  "{\"a\":1 \"b\":2}",
        "{\"a:1}",   "{\"a\\",    "{\"a\\\"",       "{\"a\":[}",  "{\"a\":[1}}",  "\0{}"s,    "{\"a\":\"\0\"}"s,
        "{\"a\":\\", "{\\}",      "{\"a\":tru}",    "{\"a\":nul", "{\"a\":TRUE}", "{\"a\":1", "{\"a\":\"",
        mark,        mark + "{}", " " + mark + "{}"};
    const std::int64_t before = Memory::LiveCount();
    for (const std::string& text : cases)
    {
        SCOPED_TRACE(text);
        EXPECT_ERROR(JSONObject(String(text)), ErrorCodes::InvalidFormat);
    }
    EXPECT_EQ(Memory::LiveCount(), before);
}

TEST(JSONTextTest, ReadsEscapesByOneRuleInKeysAndValues)
{
    const std::pair<std::string, std::string> cases[] = {
        {R"(\b\f\n\r\t\"\\\/)", "\b\f\n\r\t\"\\/"},
        {R"(\u0041\u00e4\u20AC\uFFFF)", "A\xC3\xA4\xE2\x82\xAC\xEF\xBF\xBF"},
        {R"(\ud83D\uDE00)", "\xF0\x9F\x98\x80"},
        {R"(\x\'\ \0\U0041)", "x' 0U0041"},
        {R"(a\u0000b\u0000)", "ab"},
        {R"(a\uDE00b\uD83D)", "ab"},
        {R"(\uD7FF\uD800\uDC00\uDBFF\uE000\uDBFF\uDFFF)", "\xED\x9F\xBF\xF0\x90\x80\x80\xEE\x80\x80\xF4\x8F\xBF\xBF"},
        {R"(a\uD83Db\uD83Dc)", "abc"},
        {R"(\uD83D\u0041\uD83D\x\uD83D\uD83D\uDE00)", "Ax\xF0\x9F\x98\x80"},
        {"\\\xC3\xA4\\\x01", "\xC3\xA4\x01"},
        {R"(\\u0000\\)", R"(\u0000\)"},
    };
    for (const auto& [text, expected] : cases)
    {
        SCOPED_TRACE(text);
        const JSONObject object(String("{\"" + text + "\":\"" + text + "\",\"end\":[\"\\q\"]}"));
        EXPECT_EQ(object.Keys()[0].View(), expected);
        EXPECT_EQ(object.GetString(std::string_view(expected)).View(), expected);
        EXPECT_EQ(object.GetJSONArray("end").GetString(0), "q");
    }
    for (const char* text : {R"(\u)", R"(\u12)", R"(\u12G4)", R"(\u 123)", R"(\u+123)", R"(\ud83d\u12)"})
    {
        SCOPED_TRACE(text);
        EXPECT_ERROR(JSONObject(String("{\"a\":\""s + text + "\"}")), ErrorCodes::InvalidFormat);
    }
}

TEST(JSONTextTest, WritesNumbersByTheRules)
{
    const std::string largest(309, '9');
    const std::pair<std::string, std::string> cases[] = {
        {"0", "0"},
        {"-0", "0"},
        {"1", "1"},
        {"-2147483648", "-2147483648"},
        {"2147483647", "2147483647"},
        {"2147483648", "2147483648"},
        {"1e2", "100"},
        {"1E+2", "100"},
        {"1e-17", "0"},
        {"1.0000000000000001", "1"},
        {"1e20", "100000000000000000000"},
        {"-1e300", "-" + Rewrite("{\"a\":1e300}").substr(5, 301)},
        {"1.5", "1.500000"},
        {"-0.25", "-0.250000"},
        {"1.23456789", "1.234568"},
        {"0.000001", "0.000001"},
        {"0.00000015", "1.500000e-07"},
        {"999999999.5", "999999999.500000"},
        {"1000000000.5", "1.000000e+09"},
        {"1e999", "null"},
        {"-1e999", "null"},
        {"1" + std::string(400, '0'), "null"},
        {"1" + std::string(400, '0') + "e-400", "1"},
        {"1e99999999999999999999999", "null"},
        {"1e-99999999999999999999999", "0"},
        {"1e9223372036854775807", "null"}, // the ends of an exponent's own range
        {"0.001e-9223372036854775808", "0"},
        {"0." + std::string(400, '0') + "1e401", "1"},
        {"0." + std::string(400, '0') + "1", "0"},
        {"0e999", "0"},
        {"1." + std::string(5000, '3'), "1.333333"},
    };
    for (const auto& [text, expected] : cases)
    {
        SCOPED_TRACE(text);
        EXPECT_EQ(Rewrite("{\"a\":" + text + "}"), "{\"a\":" + expected + "}");
        EXPECT_EQ(Rewrite("{\"a\":[" + text + "," + text + "]}"), "{\"a\":[" + expected + "," + expected + "]}");
    }
    EXPECT_EQ(Rewrite("{\"a\":1e308}").size(), 309 + 6u);
}

TEST(JSONTextTest, RefusesWhatIsNoNumber)
{
    for (const char* text : {"01", "-", "+1", ".5", "1.", "1.e5", "-.5", "1e", "1e+", "0x10", "1,5", "1.5.5", "--1",
                             "NaN", "Infinity", "-inf", "1f", "00", "1e5.5"})
    {
        SCOPED_TRACE(text);
        EXPECT_ERROR(JSONObject(String("{\"a\":"s + text + "}")), ErrorCodes::InvalidFormat);
    }
}

TEST(JSONTextTest, AThousandLevelsAreReadAndMoreAreRefused)
{
    const auto nested = [](std::size_t levels) { return "{\"a\":" + Repeat("[", levels) + Repeat("]", levels) + "}"; };
    const std::string objects = Repeat("{\"a\":", 999) + "{}" + Repeat("}", 999);
    Tests::RunOnSmallStack([&] {
        EXPECT_EQ(Rewrite(nested(999)), nested(999));
        EXPECT_EQ(Rewrite(objects), objects);
        EXPECT_ERROR(JSONObject(String(nested(1000))), ErrorCodes::InvalidFormat);
        EXPECT_ERROR(JSONObject(String("{\"a\":" + objects + "}")), ErrorCodes::InvalidFormat);
        EXPECT_ERROR(JSONObject(String("{\"a\":" + nested(998) + ",}")), ErrorCodes::InvalidFormat);
        EXPECT_ERROR(JSONArray(String(std::string(LargestDatagram, '['))), ErrorCodes::InvalidFormat);
        EXPECT_ERROR(JSONObject(String(Repeat("{\"a\":", LargestDatagram / 5))), ErrorCodes::InvalidFormat);
    });
}

TEST(JSONTextTest, ATextIsReadUpToALimitAndRefusedBeyondIt)
{
    constexpr std::size_t Limit = 16 * 1024 * 1024;
    const std::string padding(Limit - 2, ' ');
    EXPECT_EQ(Rewrite(padding + "{}"), "{}");
    EXPECT_EQ(Rewrite(padding + "{}\0 behind the end"s), "{}");
    EXPECT_EQ(JSONArray(String(padding + "[]")).Length(), 0);
    try
    {
        Rewrite(padding + " {}");
        ADD_FAILURE() << "read";
    }
    catch (const Nfx::System::Exception& exception)
    {
        EXPECT_EQ(exception.GetError().Code(), ErrorCodes::InvalidFormat);
        EXPECT_EQ(exception.GetMessage(), "JSON document too large : 16777217 bytes, the limit is 16777216");
    }
}
} // namespace
