#include "Json/JSONArray.h"

#include "Json/JSONObject.h"
#include "support/ExpectError.h"
#include "system/ErrorCodes.h"

#include <gtest/gtest.h>

#include <string>

using Nfx::System::String;
using Zent::Utils::Json::JSONArray;
using Zent::Utils::Json::JSONObject;
namespace ErrorCodes = Nfx::System::ErrorCodes;

namespace
{
TEST(JSONArrayTest, ElementsAreFoundByIndexInAnyOrder)
{
    const JSONArray array(String(R"([{"a":"0"},"1",2,{"a":"3"}])"));
    EXPECT_EQ(array.Length(), 4);
    EXPECT_EQ(array.GetJSONObject(3).GetString("a"), "3");
    EXPECT_EQ(array.GetJSONObject(0).GetString("a"), "0");
    EXPECT_EQ(array.GetString(1), "1");
    EXPECT_EQ(array.GetString(1), "1");
    EXPECT_EQ(array.GetJSONObject(3).GetString("a"), "3");

    JSONObject object = array.GetJSONObject(0);
    String string = "untouched";
    for (const int index : {-1, 1, 2, 4, 2147483647})
    {
        SCOPED_TRACE(index);
        EXPECT_FALSE(array.TryGetJSONObject(index, object));
        EXPECT_ERROR(array.GetJSONObject(index), ErrorCodes::ResourceNotFound);
        EXPECT_TRUE(index == 1 || !array.TryGetString(index, string));
    }
    EXPECT_EQ(object.GetString("a"), "0");
    EXPECT_EQ(string, "untouched");
    EXPECT_ERROR(array.GetString(0), ErrorCodes::ResourceNotFound);
    EXPECT_EQ(array.GetString(1), "1"); // found again after the look-ups behind the end
}

TEST(JSONArrayTest, AnEmptyArrayHasNoElements)
{
    for (const JSONArray& array : {JSONArray(), JSONArray(String(" [ ] tail"))})
    {
        EXPECT_EQ(array.Length(), 0);
        EXPECT_EQ(array.ToString(), "[]");
        EXPECT_ERROR(array.GetString(0), ErrorCodes::ResourceNotFound);
    }
}

TEST(JSONArrayTest, OnlyAnArrayIsAccepted)
{
    for (const char* text : {"", "{}", "1", "\"a\"", "[", "[1", "[1,]", "[,1]", "]", "[1 2]"})
    {
        SCOPED_TRACE(text);
        EXPECT_ERROR(JSONArray(String(text)), ErrorCodes::InvalidFormat);
    }
}
} // namespace
