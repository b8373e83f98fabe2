#pragma once

#include "Json/IJSONSerializable.h"
#include "Json/TextView.h"
#include "system/Object.h"
#include "system/String.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Zent::Utils::Json
{
class JSONObject;
}

namespace Zent::Discovery
{
/// The file-transfer settings of a device: texts by key, in the order in which they were added. No key has a meaning
/// here. Keys and values stand in one text, because a device may send thousands of short ones. Not locked.
class FileTransferInfos : public Nfx::System::Object, public Utils::Json::IJSONSerializable
{
public:
    void Serialize(Utils::Json::JSONStringer& stringer) const override;
    Nfx::System::String ToJson() const override;

    /// Replaces the settings by the members of an object; a repeated key keeps its first value.
    /// @throws Exception with ErrorCodes::InvalidFormat for malformed JSON or when members that differ in case alone
    /// would multiply the text; ErrorCodes::ResourceNotFound when a member is no string. What stands before it is kept.
    void Deserialize(const Nfx::System::String& json) override;

    /// Deserialize for text that is parsed already.
    void ReadFrom(const Utils::Json::JSONObject& json);

    /// Takes time in proportion to the number of settings.
    /// @throws ArgumentException when the key is there already, case included; nothing changes.
    void Add(const Utils::Json::TextView& key, const Utils::Json::TextView& value);

    /// False, and value stays untouched, when there is no such key; case counts.
    bool TryGetValue(const Utils::Json::TextView& key, Nfx::System::String& value) const;

    std::size_t Count() const noexcept { return entries.size(); }

    void Clear() noexcept;

    /// Calls action(key, value) with two std::string_view, valid during the call, for each setting in order.
    template <class TAction>
    void ForEach(TAction&& action) const
    {
        for (std::size_t index = 0; index < entries.size(); ++index)
        {
            action(KeyAt(index), ValueAt(index));
        }
    }

private:
    struct Entry
    {
        std::size_t KeyEnd;
        std::size_t ValueEnd;
    };

    std::string_view KeyAt(std::size_t index) const noexcept;
    std::string_view ValueAt(std::size_t index) const noexcept;

    /// The place of a key; Count() when there is no such key.
    std::size_t IndexOf(std::string_view key) const noexcept;

    void Append(std::string_view key, std::string_view value);
    void AppendMembers(const Utils::Json::JSONObject& json);

    /// Gives spare memory back: hosts wait in queues.
    void Trim() noexcept;

    std::string text;           // key, value, key, value, ...
    std::vector<Entry> entries; // where in text they end
};
} // namespace Zent::Discovery
