#pragma once

#include "Json/AbstractJSON.h"
#include "Json/JSONKey.h"
#include "Json/TextView.h"
#include "system/Boolean.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Zent::Utils::Json
{
/// Writes one JSON document front to back. Calls must nest properly: each misuse throws an Exception with
/// ErrorCodes::InvalidCommandValue and changes nothing.
class JSONStringer final : public AbstractJSON
{
public:
    JSONStringer();
    JSONStringer(const JSONStringer&) = delete;
    JSONStringer& operator=(const JSONStringer&) = delete;

    /// Opens an object: as the document, as the next element, or as the value of the pending key.
    void Object();
    void EndObject();

    /// Opens an array: as the document, as the next element, or as the value of the pending key.
    void Array();
    void EndArray();

    /// Names the next value; only directly within an object. A second key in a row takes the place of the first.
    void Key(const TextView& key);

    /// The same for a literal that needs no escape, which the compiler checks.
    void Key(const JSONKey& key);

    /// Adds a string, within an object under the pending key.
    void Value(const TextView& value);

    /// Adds a JSON text as it stands, which must be one complete value.
    void Json(const TextView& json);

    /// Adds true or false, within an object under the pending key.
    void Value(const Nfx::System::Boolean& value);

    /// The text written so far; complete once the outermost container is closed.
    Nfx::System::String ToString() const override;

    /// Hands the text over without a copy and leaves the writer as new.
    Nfx::System::String Detach();

private:
    enum class Kind : unsigned char
    {
        Object,
        Array
    };

    struct Container
    {
        Kind What;
        bool HasMembers;
    };

    static constexpr std::size_t NoKey = static_cast<std::size_t>(-1);

    void BeginKey(std::string_view key);
    void BeginValue();
    void Open(Kind kind, char bracket);
    void Close(Kind kind, char bracket);
    void DropPendingKey();
    void Separate();

    std::string text;
    std::vector<Container> open;
    std::size_t keyStart = NoKey; // where the pending key begins in the text, its comma included
    bool keyWasFirst = false;     // whether the pending key is its object's first
    bool complete = false;
};
} // namespace Zent::Utils::Json
