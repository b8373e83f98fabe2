#include "Json/JSONArray.h"
#include "Json/JSONObject.h"
#include "support/FuzzTarget.h"

#include <algorithm>
#include <cctype>

using Nfx::System::Boolean;
using Nfx::System::String;
using Nfx::System::Collections::Generic::List;
using namespace Zent::Utils::Json;

namespace
{
bool IsSame(const JSONObject& left, const JSONObject& right);

bool IsSame(const JSONArray& left, const JSONArray& right)
{
    bool isSame = left.Length() == right.Length();
    for (std::int32_t index = 0; isSame && index < left.Length(); ++index)
    {
        String strings[2];
        JSONObject objects[2];
        isSame = left.TryGetString(index, strings[0]) == right.TryGetString(index, strings[1]) &&
                 left.TryGetJSONObject(index, objects[0]) == right.TryGetJSONObject(index, objects[1]) &&
                 strings[0] == strings[1] && IsSame(objects[0], objects[1]);
    }
    return isSame;
}

bool HasSameMember(const JSONObject& left, const JSONObject& right, const String& key)
{
    String strings[2];
    Boolean booleans[2];
    JSONObject objects[2];
    JSONArray arrays[2];
    return left.TryGetString(key, strings[0]) == right.TryGetString(key, strings[1]) &&
           left.TryGetBoolean(key, booleans[0]) == right.TryGetBoolean(key, booleans[1]) &&
           left.TryGetJSONObject(key, objects[0]) == right.TryGetJSONObject(key, objects[1]) &&
           left.TryGetJSONArray(key, arrays[0]) == right.TryGetJSONArray(key, arrays[1]) && strings[0] == strings[1] &&
           booleans[0] == booleans[1] && IsSame(objects[0], objects[1]) && IsSame(arrays[0], arrays[1]);
}

bool IsRepeated(const List<String>& keys, std::int32_t index)
{
    const auto isSameLetter = [](unsigned char left, unsigned char right) {
        return std::tolower(left) == std::tolower(right);
    };
    const std::string_view key = keys[index].View();
    return std::any_of(keys.begin(), keys.begin() + index, [&](const String& earlier) {
        return std::equal(key.begin(), key.end(), earlier.View().begin(), earlier.View().end(), isSameLetter);
    });
}

/// Whether the keys are the same, and what each key finds; its repetitions find no more.
bool IsSame(const JSONObject& left, const JSONObject& right)
{
    const List<String> keys = left.Keys();
    const List<String> otherKeys = right.Keys();
    bool isSame = keys.Count() == otherKeys.Count();
    for (std::int32_t index = 0; isSame && index < keys.Count(); ++index)
    {
        isSame =
            keys[index] == otherKeys[index] && (IsRepeated(keys, index) || HasSameMember(left, right, keys[index]));
    }
    return isSame;
}

/// Reads a text, writes it and reads that again. The second text is the same, unless numbers lost decimals: 1.5e9 is
/// written with an exponent, then as an integer.
template <class T>
void FuzzText(std::string_view input)
{
    T first;
    if (!Fuzzing::IsAccepted([&] { first = T(String(input)); }))
    {
        return;
    }
    const String written = first.ToString();
    const T second(written);
    const String again = second.ToString();
    Fuzzing::Check(IsSame(first, second), "a written document reads as the same tree");
    Fuzzing::Check(again == written || written.View().find('.') != std::string_view::npos, "it gives the same text");
    Fuzzing::Check(T(again).ToString() == again, "a text settles");
}
} // namespace

void Fuzzing::Fuzz(std::string_view input)
{
    FuzzText<JSONObject>(input);
    FuzzText<JSONArray>(input);
}
