#pragma once

#include "JSONArena.h"
#include "system/Object.h"

#include <cstddef>
#include <string_view>

struct cJSON;

namespace Zent::Utils::Json
{
/// A parsed text: owns the tree of cJSON items, which never changes. A tree takes up to 35 times its text, so the
/// length of a text is limited.
class JSONDocument final : public Nfx::System::Object
{
public:
    static constexpr std::size_t LargestText = std::size_t{16} * 1024 * 1024; // bytes, up to a NUL

    /// Parses up to the end of the first value or a NUL. Any number of threads may parse at the same time.
    /// @throws Exception with ErrorCodes::InvalidFormat when the text is malformed, begins with a byte order mark, is
    /// nested deeper than 1000 levels or longer than LargestText; OutOfMemoryException.
    explicit JSONDocument(std::string_view text);

    const cJSON* Root() const noexcept { return root; }

private:
    JSONArena memory;
    const cJSON* root;
};
} // namespace Zent::Utils::Json
