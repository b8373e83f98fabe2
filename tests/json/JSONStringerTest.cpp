#include "Json/JSONStringer.h"

#include "Json/JSONObject.h"
#include "support/ExpectError.h"
#include "system/ErrorCodes.h"

#include <gtest/gtest.h>

#include <string>

using Nfx::System::String;
using Zent::Utils::Json::JSONObject;
using Zent::Utils::Json::JSONStringer;
namespace ErrorCodes = Nfx::System::ErrorCodes;

namespace
{
TEST(JSONStringerTest, WritesCompactTextInTheOrderOfTheCalls)
{
    JSONStringer stringer;
    stringer.Object();
    stringer.Key("b");
    stringer.Value("text");
    stringer.Key("a");
    stringer.Array();
    stringer.Value(true);
    stringer.Object();
    stringer.EndObject();
    stringer.Array();
    stringer.EndArray();
    stringer.Json(R"({"c":1})");
    stringer.Value("");
    stringer.EndArray();
    EXPECT_EQ(stringer.ToString(), R"({"b":"text","a":[true,{},[],{"c":1},""])");
    stringer.Key("b");
    stringer.Value(false);
    stringer.EndObject();
    EXPECT_EQ(stringer.ToString(), R"({"b":"text","a":[true,{},[],{"c":1},""],"b":false})");
}

TEST(JSONStringerTest, EscapesWhatJSONDemandsAndNothingElse)
{
    JSONStringer stringer;
    stringer.Object();
    stringer.Key("k\"\\");
    stringer.Value("x\001y\b\t\n\v\f\r\033\037 /\177\"\\\xC3\xA4\xFF");
    stringer.EndObject();
    EXPECT_EQ(stringer.ToString().View(),
              "{\"k\\\"\\\\\":\"x\\u0001y\\b\\t\\n\\u000b\\f\\r\\u001b\\u001f /\177\\\"\\\\\xC3\xA4\xFF\"}");
}

TEST(JSONStringerTest, EveryByteButNULSurvivesWritingAndReading)
{
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte)
    {
        bytes.push_back(static_cast<char>(byte));
    }
    JSONStringer stringer;
    stringer.Object();
    stringer.Key(std::string_view(bytes));
    stringer.Value(std::string_view(bytes));
    stringer.EndObject();
    const JSONObject object(stringer.ToString());
    EXPECT_EQ(object.Keys()[0].View(), bytes);
    EXPECT_EQ(object.GetString(std::string_view(bytes)).View(), bytes);
    EXPECT_EQ(object.ToString(), stringer.ToString());
}

TEST(JSONStringerTest, MisuseThrowsAndChangesNothing)
{
    JSONStringer stringer;
    const auto refuse = [&stringer](auto... actions) {
        const String before = stringer.ToString();
        (
            [&] {
                EXPECT_ERROR((stringer.*actions)(), ErrorCodes::InvalidCommandValue);
                EXPECT_EQ(stringer.ToString(), before);
            }(),
            ...);
    };
    EXPECT_ERROR(stringer.Value("no container"), ErrorCodes::InvalidCommandValue);
    EXPECT_ERROR(stringer.Key("no container"), ErrorCodes::InvalidCommandValue);
    refuse(&JSONStringer::EndObject, &JSONStringer::EndArray);
    stringer.Object();
    EXPECT_ERROR(stringer.Value(true), ErrorCodes::InvalidCommandValue); // no key
    refuse(&JSONStringer::EndArray, &JSONStringer::Object, &JSONStringer::Array);
    stringer.Key("a");
    stringer.Array();
    refuse(&JSONStringer::EndObject);
    try
    {
        stringer.Key("within an array");
        ADD_FAILURE();
    }
    catch (const Nfx::System::Exception& exception)
    {
        EXPECT_TRUE(exception.GetMessage().View().starts_with("Key "));
        EXPECT_EQ(exception.GetError().Code(), ErrorCodes::InvalidCommandValue);
    }
    stringer.EndArray();
    stringer.EndObject();
    EXPECT_ERROR(stringer.Value(true), ErrorCodes::InvalidCommandValue);
    refuse(&JSONStringer::Object, &JSONStringer::Array, &JSONStringer::EndObject);
    EXPECT_EQ(stringer.ToString(), R"({"a":[]})");
}

TEST(JSONStringerTest, AKeyWithoutValueLeavesNoTrace)
{
    JSONStringer stringer;
    stringer.Object();
    stringer.Key("dropped");
    stringer.Key("a");
    EXPECT_EQ(stringer.ToString(), "{");
    stringer.Value("1");
    stringer.Key("dropped");
    stringer.Key("b");
    stringer.Object();
    stringer.Key("dropped");
    stringer.EndObject();
    stringer.Key("dropped");
    stringer.EndObject();
    EXPECT_EQ(stringer.ToString(), R"({"a":"1","b":{}})");
}

TEST(JSONStringerTest, DetachingHandsTheTextOverAndStartsAnew)
{
    JSONStringer stringer;
    stringer.Array();
    stringer.EndArray();
    EXPECT_EQ(stringer.Detach(), "[]");
    stringer.Object();
    stringer.EndObject();
    EXPECT_EQ(stringer.Detach(), "{}");
}
} // namespace
