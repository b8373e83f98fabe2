#include "Inventory/DeviceDifferences.h"

#include "Json/JSONArray.h"
#include "Json/JSONObject.h"
#include "JsonText.h"
#include "StandardErrors.h"
#include "system/Boolean.h"

#include <algorithm>
#include <map>

using Nfx::System::Boolean;
using Nfx::System::String;
using Zent::Utils::Json::JSONArray;
using Zent::Utils::Json::JSONObject;

namespace Zent::Discovery::Inventory
{
namespace
{
using Difference = DeviceDifferences::Difference;

std::string Visible(const std::string& value)
{
    return value.empty() ? "\"\"" : value;
}

std::string Text(const String& text)
{
    return std::string(text.View());
}

/// The elements of an array by what tells them apart, which unlike their position stays when another one comes or goes.
std::map<std::string, JSONObject> ElementsOf(const JSONArray& array)
{
    std::map<std::string, JSONObject> elements;
    for (std::int32_t i = 0; i < array.Length(); ++i)
    {
        JSONObject element;
        array.TryGetJSONObject(i, element);
        String name;
        for (const char* key : {"MACAddress", "ProductName", "ProductType"})
        {
            if (element.TryGetString(key, name))
            {
                break;
            }
        }
        const std::string wanted = Text(name);
        std::string unique = wanted;
        for (int count = 2; elements.contains(unique); ++count)
        {
            unique = wanted + "#" + std::to_string(count);
        }
        elements.emplace(std::move(unique), std::move(element));
    }
    return elements;
}

class Comparison final
{
public:
    void Objects(const std::string& prefix, const JSONObject& before, const JSONObject& after)
    {
        std::vector<std::string> keys;
        for (const JSONObject* object : {&before, &after})
        {
            for (const String& key : object->Keys())
            {
                if (std::ranges::find(keys, key.View()) == keys.end())
                {
                    keys.push_back(Text(key));
                }
            }
        }
        for (const std::string& key : keys)
        {
            Members(prefix + key, before, after, key);
        }
    }

    std::vector<Difference> Found;

private:
    void Members(const std::string& property, const JSONObject& before, const JSONObject& after, const std::string& key)
    {
        JSONObject objectBefore;
        JSONObject objectAfter;
        if (before.TryGetJSONObject(key.c_str(), objectBefore) && after.TryGetJSONObject(key.c_str(), objectAfter))
        {
            Objects(property + ".", objectBefore, objectAfter);
            return;
        }
        JSONArray arrayBefore;
        JSONArray arrayAfter;
        if (before.TryGetJSONArray(key.c_str(), arrayBefore) && after.TryGetJSONArray(key.c_str(), arrayAfter))
        {
            Arrays(property, arrayBefore, arrayAfter);
            return;
        }
        Note(property, ValueOf(before, key), ValueOf(after, key));
    }

    void Arrays(const std::string& property, const JSONArray& before, const JSONArray& after)
    {
        const std::map<std::string, JSONObject> elementsBefore = ElementsOf(before);
        const std::map<std::string, JSONObject> elementsAfter = ElementsOf(after);
        for (const auto& [name, element] : elementsBefore)
        {
            const auto same = elementsAfter.find(name);
            if (same == elementsAfter.end())
            {
                Note(PathOf(property, name), Text(element.ToString()), std::nullopt);
            }
            else
            {
                Objects(PathOf(property, name) + ".", element, same->second);
            }
        }
        for (const auto& [name, element] : elementsAfter)
        {
            if (!elementsBefore.contains(name))
            {
                Note(PathOf(property, name), std::nullopt, Text(element.ToString()));
            }
        }
    }

    static std::string PathOf(const std::string& property, const std::string& element)
    {
        return property + "[" + element + "]";
    }

    static std::optional<std::string> ValueOf(const JSONObject& object, const std::string& key)
    {
        String text;
        Boolean flag;
        JSONObject child;
        JSONArray array;
        if (object.TryGetString(key.c_str(), text))
        {
            return Text(text);
        }
        if (object.TryGetBoolean(key.c_str(), flag))
        {
            return flag ? "true" : "false";
        }
        if (object.TryGetJSONObject(key.c_str(), child))
        {
            return Text(child.ToString());
        }
        if (object.TryGetJSONArray(key.c_str(), array))
        {
            return Text(array.ToString());
        }
        return std::nullopt;
    }

    void Note(const std::string& property, std::optional<std::string> before, std::optional<std::string> after)
    {
        if (before != after)
        {
            Found.push_back({property, std::move(before), std::move(after)});
        }
    }
};
} // namespace

std::string DeviceDifferences::Difference::ToString() const
{
    if (!Before)
    {
        return Property + ": added " + Visible(*After);
    }
    return Property + ": " + (After ? Visible(*Before) + " -> " + Visible(*After) : "removed " + Visible(*Before));
}

std::string DeviceDifferences::Difference::ToJson() const
{
    JsonText json;
    json.Text("Property", Property);
    if (Before)
    {
        json.Text("Before", *Before);
    }
    if (After)
    {
        json.Text("After", *After);
    }
    return json.Take();
}

std::vector<Difference> DeviceDifferences::Between(const Device& before, const Device& after)
{
    if (before.Message.Document == after.Message.Document)
    {
        return {};
    }
    return WithStandardErrors([&before, &after] {
        Comparison comparison;
        comparison.Objects("", JSONObject(String(std::string_view(before.Message.Document))).GetJSONObject("Host"),
                           JSONObject(String(std::string_view(after.Message.Document))).GetJSONObject("Host"));
        return std::move(comparison.Found);
    });
}
} // namespace Zent::Discovery::Inventory
