#pragma once

#include "Json/AbstractJSON.h"
#include "Json/TextView.h"
#include "system/Boolean.h"
#include "system/Collections/Generic/List.h"

#include <functional>
#include <string_view>

namespace Zent::Utils::Json
{
class JSONArray;

/// A JSON object to read. Keys match ignoring ASCII case; of several matches the first in the document counts, whatever
/// its type.
class JSONObject final : public AbstractJSON
{
public:
    /// Takes a key, the text that GetString gives for it, and whether that text belongs to an earlier member whose key
    /// differs in case. The views live as long as the object.
    using StringAction = std::function<void(std::string_view key, std::string_view value, bool repeated)>;

    /// An empty object.
    JSONObject();

    /// Parses an object. The text ends at a NUL; what follows the closing brace is ignored.
    /// @throws Exception with ErrorCodes::InvalidFormat when the text is malformed, nested deeper than 1000 levels,
    /// longer than 16 MiB or not an object; OutOfMemoryException.
    explicit JSONObject(const Nfx::System::String& text);

    /// False, and value stays untouched, when there is no such member or it is neither true nor false.
    Nfx::System::Boolean TryGetBoolean(const TextView& key, Nfx::System::Boolean& value) const;

    /// False, and value stays untouched, when there is no such member or it is no string. The bytes are passed as they
    /// are; they need not be valid UTF-8.
    Nfx::System::Boolean TryGetString(const TextView& key, Nfx::System::String& value) const;

    /// False, and value stays untouched, when there is no such member or it is no object.
    Nfx::System::Boolean TryGetJSONObject(const TextView& key, JSONObject& value) const;

    /// False, and value stays untouched, when there is no such member or it is no array.
    Nfx::System::Boolean TryGetJSONArray(const TextView& key, JSONArray& value) const;

    /// TryGetString without a copy: the text lives as long as something holds the document.
    bool TryGetText(const TextView& key, std::string_view& value) const noexcept;

    /// Whether TryGetString would succeed.
    bool HasString(const TextView& key) const noexcept;

    /// @throws Exception with ErrorCodes::ResourceNotFound when TryGetString fails.
    Nfx::System::String GetString(const TextView& key) const;

    /// GetString without a copy: the text lives as long as something holds the document.
    /// @throws Exception with ErrorCodes::ResourceNotFound when TryGetText fails.
    std::string_view GetText(const TextView& key) const;

    /// @throws Exception with ErrorCodes::ResourceNotFound when TryGetJSONObject fails.
    JSONObject GetJSONObject(const TextView& key) const;

    /// @throws Exception with ErrorCodes::ResourceNotFound when TryGetJSONArray fails.
    JSONArray GetJSONArray(const TextView& key) const;

    /// The keys of all members in document order, repeated ones included.
    Nfx::System::Collections::Generic::List<Nfx::System::String> Keys() const;

    /// Calls action for each different key in document order; the work grows as n log n whatever the keys are.
    /// @throws Exception with ErrorCodes::ResourceNotFound at the first key for which GetString would throw.
    void ForEachString(const StringAction& action) const;

    Nfx::System::String ToString() const override;

private:
    friend class JSONArray;

    JSONObject(const AbstractJSON& owner, const cJSON* item);
};
} // namespace Zent::Utils::Json
