#pragma once

#include "system/Object.h"
#include "system/SmartPointer.h"
#include "system/String.h"

struct cJSON;

namespace Zent::Utils::Json
{
class JSONDocument;

/// Base of the JSON classes: one item of a parsed document. All objects and arrays taken from one document share its
/// tree and keep it alive; the tree never changes. One object of these classes belongs to one thread at a time.
class AbstractJSON : public Nfx::System::Object
{
public:
    ~AbstractJSON() override;

    /// The compact JSON text.
    Nfx::System::String ToString() const override = 0;

protected:
    /// Holds no item; the derived classes take that as an empty object or array.
    AbstractJSON();

    /// Parses a text.
    /// @throws Exception with ErrorCodes::InvalidFormat when the text is malformed, nested deeper than 1000 levels or
    /// longer than 16 MiB; OutOfMemoryException.
    explicit AbstractJSON(const Nfx::System::String& text);

    /// Shares another item of the owner's document.
    /// @throws Exception with ErrorCodes::ParameterIsNull when there is no item.
    AbstractJSON(const AbstractJSON& owner, const cJSON* item);

    // A move would be no cheaper than a copy, which leaves its source whole.
    AbstractJSON(const AbstractJSON& source);
    AbstractJSON& operator=(const AbstractJSON& source);

    /// Null for an empty object or array that was never parsed.
    const cJSON* Item() const noexcept { return item; }

private:
    Nfx::System::SmartPointer<JSONDocument> document; // owns the tree that item is part of
    const cJSON* item = nullptr;
};
} // namespace Zent::Utils::Json
