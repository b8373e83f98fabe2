#pragma once

#include "JSONArena.h"
#include "system/Object.h"

#include <string_view>

struct cJSON;

namespace Zent::Utils::Json
{
/// A parsed text: owns the tree of cJSON items, which never changes.
class JSONDocument final : public Nfx::System::Object
{
public:
    /// Sends cJSON's allocations to the arena of the document that is being parsed. Any thread, any number of times.
    static void InstallHooks();

    /// Parses up to the end of the first value or a NUL. The character behind the text must be readable and NUL.
    /// @throws Exception with ErrorCodes::InvalidFormat when the text is malformed or nested deeper than 1000 levels;
    /// OutOfMemoryException.
    explicit JSONDocument(std::string_view text);

    const cJSON* Root() const noexcept { return root; }

private:
    JSONArena memory;
    const cJSON* root;
};
} // namespace Zent::Utils::Json
