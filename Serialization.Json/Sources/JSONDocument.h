#pragma once

#include "JSONArena.h"
#include "system/Object.h"

#include <cstddef>
#include <string_view>

struct cJSON;

namespace Zent::Utils::Json
{
/// A parsed text: owns the tree of cJSON items, which never changes. All threads parse in turn, so the length of a text
/// is limited: a host's argument must not keep the parser of datagrams waiting for long.
class JSONDocument final : public Nfx::System::Object
{
public:
    static constexpr std::size_t LargestText = std::size_t{16} * 1024 * 1024; // bytes, up to a NUL

    /// Sends cJSON's allocations to the arena of the document that is being parsed. Any thread, any number of times.
    static void InstallHooks();

    /// Parses up to the end of the first value or a NUL. The character behind the text must be readable and NUL.
    /// @throws Exception with ErrorCodes::InvalidFormat when the text is malformed, begins with a byte order mark, is
    /// nested deeper than 1000 levels or longer than LargestText; OutOfMemoryException.
    explicit JSONDocument(std::string_view text);

    const cJSON* Root() const noexcept { return root; }

private:
    JSONArena memory;
    const cJSON* root;
};
} // namespace Zent::Utils::Json
