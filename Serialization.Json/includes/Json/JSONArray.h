#pragma once

#include "Json/AbstractJSON.h"
#include "system/Boolean.h"
#include "system/Int32.h"

namespace Zent::Utils::Json
{
class JSONObject;

/// A JSON array to read. Taking the elements in rising order costs the same for each: the array remembers where the
/// last look-up ended.
class JSONArray final : public AbstractJSON
{
public:
    /// An empty array.
    JSONArray();

    /// Parses an array. The text ends at a NUL; what follows the closing bracket is ignored.
    /// @throws Exception with ErrorCodes::InvalidFormat when the text is malformed, nested deeper than 1000 levels,
    /// longer than 16 MiB or not an array; OutOfMemoryException.
    explicit JSONArray(const Nfx::System::String& text);

    Nfx::System::Int32 Length() const;

    /// False, and value stays untouched, when there is no such element or it is no object.
    Nfx::System::Boolean TryGetJSONObject(const Nfx::System::Int32& index, JSONObject& value) const;

    /// False, and value stays untouched, when there is no such element or it is no string.
    Nfx::System::Boolean TryGetString(const Nfx::System::Int32& index, Nfx::System::String& value) const;

    /// @throws Exception with ErrorCodes::ResourceNotFound when TryGetJSONObject fails.
    JSONObject GetJSONObject(const Nfx::System::Int32& index) const;

    /// @throws Exception with ErrorCodes::ResourceNotFound when TryGetString fails.
    Nfx::System::String GetString(const Nfx::System::Int32& index) const;

    Nfx::System::String ToString() const override;

private:
    friend class JSONObject;

    JSONArray(const AbstractJSON& owner, const cJSON* item);

    /// Null when there is no such element.
    const cJSON* Element(std::int32_t index) const noexcept;

    mutable std::int32_t length = -1; // -1 until it is asked for
    mutable std::int32_t lastIndex = 0;
    mutable const cJSON* lastElement = nullptr;
};
} // namespace Zent::Utils::Json
