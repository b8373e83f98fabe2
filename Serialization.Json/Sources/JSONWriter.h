#pragma once

#include <string>
#include <string_view>

struct cJSON;

namespace Zent::Utils::Json
{
/// Appends JSON text in its compact form; the same text in every locale.
class JSONWriter final
{
public:
    JSONWriter() = delete;

    /// Appends a string between quotation marks. Bytes from 32 on stay as they are.
    static void AppendString(std::string& text, std::string_view value);

    /// Appends a number, or null for one that JSON cannot express.
    static void AppendNumber(std::string& text, double value);

    /// Appends an object or array with all that is in it, whatever its depth.
    static void AppendContainer(std::string& text, const cJSON& container);
};
} // namespace Zent::Utils::Json
