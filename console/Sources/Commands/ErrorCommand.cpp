#include "Commands/ErrorCommand.h"

#include "Commands/CommandContext.h"
#include "Json/JSONStringer.h"
#include "Show/Output.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>

using Zent::Discovery::Programs::HostSession;
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

/// Reads a result code as users meet it: 73, -1073151724, 0xC0090114.
int ReadCode(const std::string& text)
{
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const char* const begin = text.data() + (isHexadecimal ? 2 : 0);
    const char* const end = text.data() + text.size();
    std::int64_t value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value, isHexadecimal ? 16 : 10);
    if (error != std::errc() || stop != end || value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::uint32_t>::max())
    {
        throw CLI::ValidationError("CODE", text + " is not a result code");
    }
    return static_cast<int>(static_cast<std::uint32_t>(value));
}
} // namespace

CLI::App& ErrorCommand::AddTo(CLI::App& parent)
{
    CLI::App& command = *parent.add_subcommand("error", "print the text of a result code");
    const auto read = [this](const std::string& text) { code = ReadCode(text); };
    command.add_option_function<std::string>("CODE", read, "such as 73 or 0xC0090114")->required()->type_name("");
    return command;
}

ExitStatus ErrorCommand::Run(CommandContext& context)
{
    // The library's answer for a number that is none of its codes.
    static constexpr std::string_view Unknown = "Unable to retrieve error message!";
    const std::string text = HostSession::Load(context.Options().Session.Library).TextOf(code);
    if (text == Unknown)
    {
        context.Out().Complain(text);
        return ExitStatus::Failure;
    }
    context.Out().PrintLine(context.Options().Json ? Document(code, text) : text);
    return ExitStatus::Success;
}
} // namespace Zent::Discovery::Console
