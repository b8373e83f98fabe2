#include "JSONDocument.h"

#include "ReadNumber.h"
#include "system/Exceptions.h"
#include "system/UInt64.h"

#include <cJSON.h>

namespace Zent::Utils::Json
{
using Nfx::System::Exception;
using Nfx::System::String;
using Nfx::System::UInt64;
namespace ErrorCodes = Nfx::System::ErrorCodes;

namespace
{
const char SourceName[] = "Serialization.Json/Sources/JSONDocument";

/// An item takes 64 bytes, and few take less than 10 characters of text.
std::size_t ExpectedTreeSize(std::string_view text)
{
    return 256 + 6 * text.size();
}

const cJSON* Parse(std::string_view text, JSONArena& memory)
{
    const auto allocate = [](void* arena, std::size_t size) { return static_cast<JSONArena*>(arena)->Allocate(size); };
    const cJSON_Reader reader = {&memory, allocate, &ReadNumber};
    return cJSON_ParseWithReader(text.data(), text.size(), &reader);
}

void RefuseTooLarge(std::string_view content)
{
    if (content.size() > JSONDocument::LargestText)
    {
        throw Exception(ErrorCodes::InvalidFormat,
                        "JSON document too large : " + UInt64(content.size()).ToString() + " bytes, the limit is " +
                            UInt64(JSONDocument::LargestText).ToString(),
                        SourceName, __LINE__);
    }
}
} // namespace

JSONDocument::JSONDocument(std::string_view text)
    : memory(ExpectedTreeSize(text))
{
    const std::string_view content = text.substr(0, text.find('\0'));
    RefuseTooLarge(content);
    root = Parse(content, memory);
    if (root == nullptr && memory.IsExhausted())
    {
        throw Nfx::System::OutOfMemoryException(SourceName, __LINE__);
    }
    if (root == nullptr)
    {
        throw Exception(ErrorCodes::InvalidFormat, "no JSON document : " + String::Quoted(text), SourceName, __LINE__);
    }
}
} // namespace Zent::Utils::Json
