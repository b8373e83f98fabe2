#pragma once

#include <string>
#include <string_view>

namespace Zent::Utils::Json
{
/// Rewrites the escapes that cJSON refuses or misreads: within strings a backslash before a character without a meaning
/// of its own goes, as do lone surrogates and U+0000. Everything else, faults included, stays for the reader to judge.
std::string RewriteEscapes(std::string_view text);
} // namespace Zent::Utils::Json
