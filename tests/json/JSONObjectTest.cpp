#include "Json/JSONObject.h"

#include "Json/JSONArray.h"
#include "support/ExpectError.h"
#include "system/ErrorCodes.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

using Nfx::System::Boolean;
using Nfx::System::Exception;
using Nfx::System::String;
using Zent::Utils::Json::JSONArray;
using Zent::Utils::Json::JSONObject;
namespace ErrorCodes = Nfx::System::ErrorCodes;

namespace
{
JSONObject Parse(const std::string& text)
{
    return JSONObject(String(text));
}

/// What ForEachString gives, as "key=value" or, repeated, "key~value".
std::string Strings(const JSONObject& object)
{
    std::string result;
    object.ForEachString([&result](std::string_view key, std::string_view value, bool repeated) {
        result.append(key).append(repeated ? "~" : "=").append(value).append(" ");
    });
    return result;
}

TEST(JSONObjectTest, TheFirstMemberWhoseKeyMatchesIgnoringCaseCounts)
{
    const JSONObject object = Parse(R"({"A":1,"a":"2","NICs":"3","nics":"4","":"5","k\u00e4":"6"})");
    String value = "untouched";
    EXPECT_FALSE(object.TryGetString("a", value)); // the number hides the string
    EXPECT_FALSE(object.TryGetString("NICs2", value));
    EXPECT_FALSE(object.TryGetString("NIC", value));
    EXPECT_FALSE(object.TryGetString("K\xC3\x84", value)); // only ASCII letters have a case
    EXPECT_EQ(value, "untouched");
    EXPECT_EQ(object.GetString("nIcS"), "3");
    EXPECT_EQ(object.GetString(""), "5");
    EXPECT_EQ(object.GetString("k\xC3\xA4"), "6");
    EXPECT_EQ(object.Keys()[0], "A");
    EXPECT_EQ(object.Keys()[1], "a");
    EXPECT_EQ(object.Keys().Count(), 6);
}

TEST(JSONObjectTest, AMemberIsFoundByItsTypeAlone)
{
    const JSONObject object = Parse(R"({"s":"true","t":true,"f":false,"n":null,"1":1,"o":{},"a":[]})");
    for (const char* key : {"s", "t", "f", "n", "1", "o", "a", "absent"})
    {
        SCOPED_TRACE(key);
        const std::string name(key);
        String string;
        Boolean boolean;
        JSONObject child;
        JSONArray array;
        EXPECT_EQ(object.TryGetString(key, string), name == "s");
        EXPECT_EQ(object.HasString(key), name == "s");
        EXPECT_EQ(object.TryGetBoolean(key, boolean), name == "t" || name == "f");
        EXPECT_EQ(boolean, name == "t");
        EXPECT_EQ(object.TryGetJSONObject(key, child), name == "o");
        EXPECT_EQ(object.TryGetJSONArray(key, array), name == "a");
    }
}

TEST(JSONObjectTest, GettersNameWhatIsMissing)
{
    const JSONObject object = Parse(R"({"HostName":1})");
    const auto messageOf = [](auto&& action) {
        try
        {
            action();
        }
        catch (const Exception& exception)
        {
            EXPECT_EQ(exception.GetError().Code(), ErrorCodes::ResourceNotFound);
            return std::string(exception.GetMessage().View());
        }
        return std::string("nothing thrown");
    };
    EXPECT_EQ(messageOf([&] { object.GetString("HostName"); }), "String HostName not found");
    EXPECT_EQ(messageOf([&] { object.GetJSONObject("Host"); }), "Object Host not found");
    EXPECT_EQ(messageOf([&] { object.GetJSONArray("NICs"); }), "Array NICs not found");
    EXPECT_EQ(messageOf([&] { object.ForEachString([](auto, auto, bool) {}); }), "String HostName not found");
}

TEST(JSONObjectTest, PartsOutliveTheObjectTheyComeFrom)
{
    JSONObject object = Parse(R"({"a":{"b":{"c":["deep"]}}})");
    const JSONObject copy = object;
    ASSERT_TRUE(object.TryGetJSONObject("a", object)); // into itself
    JSONArray array = object.GetJSONObject("b").GetJSONArray("c");
    object = object.GetJSONObject("b");
    EXPECT_EQ(object.ToString(), R"({"c":["deep"]})");
    object = JSONObject();
    const JSONArray& alias = array;
    array = alias;
    EXPECT_EQ(array.GetString(0), "deep");
    EXPECT_EQ(copy.ToString(), R"({"a":{"b":{"c":["deep"]}}})");
    EXPECT_EQ(object.ToString(), "{}");
    EXPECT_FALSE(object.HasString("a"));
}

TEST(JSONObjectTest, WhatIsMovedFromStaysWhole)
{
    JSONObject object = Parse(R"({"a":["0","1"]})");
    JSONArray array = object.GetJSONArray("a");
    const JSONObject& oldObject = object;
    const JSONArray& oldArray = array;
    EXPECT_EQ(array.GetString(1), "1"); // the array now remembers an element
    JSONObject newObject(std::move(object));
    JSONArray newArray(std::move(array));
    newObject = JSONObject();
    newArray = JSONArray();
    EXPECT_EQ(oldObject.ToString(), R"({"a":["0","1"]})");
    EXPECT_EQ(oldArray.GetString(1), "1");

    newObject = std::move(object);
    newArray = std::move(array);
    newObject = JSONObject();
    newArray = JSONArray();
    EXPECT_EQ(oldObject.GetJSONArray("a").Length(), 2);
    EXPECT_EQ(oldArray.GetString(0), "0");
}

TEST(JSONObjectTest, StringsComeOnceForEachKeyWithTheTextThatALookUpGives)
{
    EXPECT_EQ(Strings(Parse("{}")), "");
    EXPECT_EQ(Strings(Parse(R"({"b":"1","a":"2","c":"3"})")), "b=1 a=2 c=3 ");
    EXPECT_EQ(Strings(Parse(R"({"a":"1","b":"2","a":"3","a":4})")), "a=1 b=2 ");
    EXPECT_EQ(Strings(Parse(R"({"a":"1","A":"2","a":"3","A":"4","aa":"5"})")), "a=1 A~1 aa=5 ");
    EXPECT_EQ(Strings(Parse(R"({"B_":"1","b":"2","B":3,"b_":"4"})")), "B_=1 b=2 B~2 b_~1 ");
}

TEST(JSONObjectTest, AFirstMemberOfAnotherTypeEndsTheStringsAtItsKey)
{
    std::string seen;
    const auto note = [&seen](std::string_view key, std::string_view, bool) { seen.append(key); };
    EXPECT_ERROR(Parse(R"({"a":"1","b":2,"c":"3"})").ForEachString(note), ErrorCodes::ResourceNotFound);
    EXPECT_ERROR(Parse(R"({"d":"1","e":null,"E":"hidden"})").ForEachString(note), ErrorCodes::ResourceNotFound);
    EXPECT_EQ(seen, "ad");
}

TEST(JSONObjectTest, ThreadsMayParseAtTheSameTime)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
    {
        threads.emplace_back([number] {
            const std::string value(static_cast<std::size_t>(number) * 100, 'x');
            for (int round = 0; round < 200; ++round)
            {
                EXPECT_EQ(Parse("{\"a\":\"" + value + "\"}").GetString("a").View(), value);
                EXPECT_ERROR(Parse("{\"a\":"), ErrorCodes::InvalidFormat);
            }
        });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}
} // namespace
