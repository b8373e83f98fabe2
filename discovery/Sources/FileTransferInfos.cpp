#include "Discovery/FileTransferInfos.h"

#include "Discovery/Attempt.h"
#include "Json/JSONObject.h"
#include "Json/JSONStringer.h"

#include <functional>

using Nfx::System::String;
using Zent::Utils::Json::JSONObject;
using Zent::Utils::Json::JSONStringer;
using Zent::Utils::Json::TextView;

namespace Zent::Discovery
{
namespace
{
const char SourceName[] = "Sources/FileTransferInfos";

/// How many times the text of a document may grow by keys that differ in case alone and so repeat one value: without a
/// limit 64 KiB of them would stand for 60 MiB.
constexpr std::size_t MaximumGrowth = 4;
} // namespace

void FileTransferInfos::Serialize(JSONStringer& stringer) const
{
    stringer.Object();
    ForEach([&stringer](std::string_view key, std::string_view value) {
        stringer.Key(key);
        stringer.Value(value);
    });
    stringer.EndObject();
}

String FileTransferInfos::ToJson() const
{
    return IJSONSerializable::ToJson();
}

void FileTransferInfos::Deserialize(const String& json)
{
    ReadFrom(JSONObject(json));
}

void FileTransferInfos::ReadFrom(const JSONObject& json)
{
    Clear();
    Attempt([&] { AppendMembers(json); },
            [this](const Nfx::System::Exception&) {
                Trim();
                throw;
            });
    Trim();
}

void FileTransferInfos::AppendMembers(const JSONObject& json)
{
    std::size_t ownLength = 0;
    std::size_t repeatedLength = 0;
    const auto append = [&](std::string_view key, std::string_view value, bool repeated) {
        ownLength += key.size() + (repeated ? 0 : value.size());
        repeatedLength += repeated ? value.size() : 0;
        if (repeatedLength > MaximumGrowth * ownLength)
        {
            throw Nfx::System::Exception(Nfx::System::ErrorCodes::InvalidFormat, SourceName, __LINE__);
        }
        Append(key, value);
    };
    json.ForEachString(std::cref(append)); // by reference: an action of this size would be allocated
}

void FileTransferInfos::Trim() noexcept
{
    text.shrink_to_fit();
    entries.shrink_to_fit();
}

void FileTransferInfos::Add(const TextView& key, const TextView& value)
{
    if (IndexOf(key) != Count())
    {
        throw Nfx::System::ArgumentException(SourceName, __LINE__);
    }
    Append(key, value);
}

bool FileTransferInfos::TryGetValue(const TextView& key, String& value) const
{
    const std::size_t index = IndexOf(key);
    if (index == Count())
    {
        return false;
    }
    value = String(ValueAt(index));
    return true;
}

void FileTransferInfos::Clear() noexcept
{
    text.clear();
    entries.clear();
}

std::string_view FileTransferInfos::KeyAt(std::size_t index) const noexcept
{
    const std::size_t begin = index == 0 ? 0 : entries[index - 1].ValueEnd;
    return std::string_view(text).substr(begin, entries[index].KeyEnd - begin);
}

std::string_view FileTransferInfos::ValueAt(std::size_t index) const noexcept
{
    const Entry& entry = entries[index];
    return std::string_view(text).substr(entry.KeyEnd, entry.ValueEnd - entry.KeyEnd);
}

std::size_t FileTransferInfos::IndexOf(std::string_view key) const noexcept
{
    std::size_t index = 0;
    while (index < entries.size() && KeyAt(index) != key)
    {
        ++index;
    }
    return index;
}

void FileTransferInfos::Append(std::string_view key, std::string_view value)
{
    text.resize(entries.empty() ? 0 : entries.back().ValueEnd); // drops what an addition without memory left behind
    text.append(key).append(value);
    entries.push_back({text.size() - value.size(), text.size()});
}
} // namespace Zent::Discovery
