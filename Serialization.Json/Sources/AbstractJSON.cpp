#include "Json/AbstractJSON.h"

#include "JSONDocument.h"
#include "system/Exceptions.h"

namespace Zent::Utils::Json
{
using Nfx::System::SmartPointer;

namespace
{
const char SourceName[] = "Serialization.Json/Sources/AbstractJSON";
} // namespace

AbstractJSON::AbstractJSON() = default;

AbstractJSON::AbstractJSON(const Nfx::System::String& text)
    : document(SmartPointer<JSONDocument>::Create(text.View()))
    , item(document->Root())
{
}

AbstractJSON::AbstractJSON(const AbstractJSON& owner, const cJSON* item)
    : document(owner.document)
    , item(item)
{
    if (item == nullptr)
    {
        throw Nfx::System::Exception(Nfx::System::ErrorCodes::ParameterIsNull, SourceName, __LINE__);
    }
}

AbstractJSON::AbstractJSON(const AbstractJSON& source) = default;
AbstractJSON::~AbstractJSON() = default;

AbstractJSON& AbstractJSON::operator=(const AbstractJSON& source)
{
    if (this != &source)
    {
        document = source.document;
        item = source.item;
    }
    return *this;
}
} // namespace Zent::Utils::Json
