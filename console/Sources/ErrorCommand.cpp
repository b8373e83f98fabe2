#include "ErrorCommand.h"

#include "Json/JSONStringer.h"
#include "Output.h"

#include <string>
#include <string_view>

using Zent::Utils::Json::JSONStringer;

namespace Zent::Discovery::Console
{
namespace
{
std::string Document(int code, const std::string& text)
{
    JSONStringer stringer;
    stringer.Object();
    stringer.Key("Code");
    stringer.Value(std::string_view(std::to_string(code)));
    stringer.Key("Text");
    stringer.Value(std::string_view(text));
    stringer.EndObject();
    return std::string(stringer.ToString().View());
}
} // namespace

ErrorCommand::ErrorCommand(int code)
    : code(code)
{
}

ExitStatus ErrorCommand::Run(const DiscoveryFunctions& library, Output& output) const
{
    // The library's answer for a number that is none of its codes.
    static constexpr std::string_view Unknown = "Unable to retrieve error message!";
    const std::string text = library.TextOf(code);
    if (text == Unknown)
    {
        output.Complain(text);
        return ExitStatus::Failure;
    }
    output.PrintLine(output.IsJson() ? Document(code, text) : text);
    return ExitStatus::Success;
}
} // namespace Zent::Discovery::Console
