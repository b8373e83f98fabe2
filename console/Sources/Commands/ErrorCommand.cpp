#include "Commands/ErrorCommand.h"

#include "Commands/Arguments.h"
#include "Commands/CommandContext.h"
#include "DiscoverySession.h"
#include "Json/JSONStringer.h"
#include "Show/Output.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string_view>

using Zent::Discovery::Programs::HostSession;
using Zent::Utils::Json::JSONStringer;

namespace Zent::Discovery::Console
{
namespace
{
/// What a code means for the user of the console.
struct Meaning
{
    int Code;
    const char* Text;
};

constexpr Meaning Meanings[] = {
    {0, "the call has succeeded"},
    {DiscoveryError::ArgumentNull, "the host program has left out an argument"},
    {DiscoveryError::ArgumentOutOfRange, "the host program has given a number that is not possible"},
    {DiscoveryError::OutOfMemory, "the host program has used up its memory"},
    {DiscoveryError::InvalidOperation, "the call is not allowed at that moment, or in a callback"},
    {DiscoveryError::NullPointer, "the server is not started, or is restarting itself; try again after a second"},
    {DiscoveryError::Socket, "the network has refused, for instance because another program has UDP port 12001; "
                             "discovery-console doctor says which"},
};

constexpr int LastKind = 84; // codes up to there are kinds of failures, whose texts are their bare names
constexpr const char* OfKind = "a failure of that kind inside the library; its log tells more";

/// Null for a code whose text speaks for itself.
const char* MeaningOf(int code)
{
    const Meaning* const found = std::ranges::find(Meanings, code, &Meaning::Code);
    return found != std::end(Meanings) ? found->Text : code > 0 && code <= LastKind ? OfKind : nullptr;
}

std::string Document(int code, const std::string& text, const char* meaning)
{
    JSONStringer stringer;
    stringer.Object();
    stringer.Key("Code");
    stringer.Value(std::string_view(std::to_string(code)));
    stringer.Key("Text");
    stringer.Value(std::string_view(text));
    if (meaning != nullptr)
    {
        stringer.Key("Meaning");
        stringer.Value(std::string_view(meaning));
    }
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
        throw std::invalid_argument(text + " is not a result code");
    }
    return static_cast<int>(static_cast<std::uint32_t>(value));
}
} // namespace

CLI::App& ErrorCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "error", "print the text of a result code");
    const auto read = [this](const std::string& text) { code = ReadCode(text); };
    arguments.AddPositional("CODE", read, "such as 73 or 0xC0090114");
    return arguments.Command();
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
    const char* const meaning = MeaningOf(code);
    context.Out().PrintLine(context.Options().Json ? Document(code, text, meaning)
                            : meaning != nullptr   ? text + ": " + meaning
                                                   : text);
    return ExitStatus::Success;
}
} // namespace Zent::Discovery::Console
