#include "JSONDocument.h"

#include "JSONEscapes.h"
#include "system/Exceptions.h"
#include "system/Immortal.h"
#include "system/Threading/Lock.h"
#include "system/UInt64.h"

#include <cJSON.h>

namespace Zent::Utils::Json
{
using Nfx::System::Exception;
using Nfx::System::Immortal;
using Nfx::System::String;
using Nfx::System::UInt64;
using Nfx::System::Threading::Lock;
using Nfx::System::Threading::Monitor;
namespace ErrorCodes = Nfx::System::ErrorCodes;

namespace
{
const char SourceName[] = "Serialization.Json/Sources/JSONDocument";
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

/// One parse at a time: cJSON notes the place of an error in a variable of the process, and its hooks cannot tell for
/// which document they allocate.
Monitor& ParserTurn()
{
    static const Immortal<Monitor> turn;
    return turn.Get();
}

JSONArena* arena = nullptr; // of the document being parsed, if any; used only by the thread whose turn it is

void* Allocate(std::size_t size)
{
    return arena->Allocate(size);
}

void Free(void* memory)
{
    arena->Release(memory);
}

/// An item takes 64 bytes, and few take less than 10 characters of text.
std::size_t ExpectedTreeSize(std::string_view text)
{
    return 256 + 6 * text.size();
}

const cJSON* Parse(std::string_view text, JSONArena& memory)
{
    const Lock turn(ParserTurn());
    arena = &memory;
    const cJSON* const root = cJSON_ParseWithLength(text.data(), text.size() + 1);
    arena = nullptr;
    return root;
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

void JSONDocument::InstallHooks()
{
    [[maybe_unused]] static const bool Installed = [] {
        cJSON_Hooks hooks = {&Allocate, &Free};
        cJSON_InitHooks(&hooks);
        return true;
    }();
}

JSONDocument::JSONDocument(std::string_view text)
    : memory(ExpectedTreeSize(text))
{
    const std::string_view content = text.substr(0, text.find('\0'));
    RefuseTooLarge(content);
    if (content.starts_with(ByteOrderMark))
    {
        root = nullptr; // cJSON would skip it
    }
    else if (content.find('\\') == std::string_view::npos)
    {
        root = Parse(content, memory);
    }
    else
    {
        root = Parse(RewriteEscapes(content), memory);
    }
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
