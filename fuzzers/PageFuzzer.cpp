#include "HttpText.h"
#include "Page/PageModel.h"
#include "RequestDesk.h"
#include "support/FuzzTarget.h"
#include "support/MemoryFaults.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <random>
#include <string>

using namespace Zent::Discovery::Page;
using Zent::Discovery::Fleet::DeviceRecord;

namespace
{
const std::string Site = "s";
const std::string Device = "02-00-00-00-00-01";

/// The text up to the end of the line, which is taken away.
std::string TakeLine(std::string_view& input)
{
    const std::size_t end = std::min(input.find('\n'), input.size());
    std::string line(input.substr(0, end));
    input.remove_prefix(std::min(end + 1, input.size()));
    return line;
}

Request RequestOf(std::string_view input)
{
    Request request{TakeLine(input), TakeLine(input), {TakeLine(input)}, "10.0.0.1", "10.0.0.2"};
    request.Cookies = TakeLine(input);
    request.Authorization = TakeLine(input);
    request.LastEventId = TakeLine(input);
    request.Body = input;
    return request;
}

std::string UnknownToken()
{
    std::random_device random;
    return std::to_string(random()) + std::to_string(random()) + std::to_string(random()) + std::to_string(random());
}

/// Nobody gets in who does not know the token.
void FuzzGate(const Request& request, const PageModel& model)
{
    static RequestDesk desk({{"a"}, false, UnknownToken(), "c"});
    const Answer answer = desk.Decide(request, model, {});
    Fuzzing::Check(answer.Status != 303 && answer.Content == Answer::AnswerContent::Text &&
                       answer.Body.find(Device) == std::string::npos &&
                       answer.Body.find("discovery_") == std::string::npos,
                   "without the token nothing is shown");
}

void FuzzDesk(const Request& request, const PageModel& model)
{
    static RequestDesk desk({{"a"}, true, std::nullopt, ""});
    const Answer answer = desk.Decide(request, model, {});
    const std::string host = HttpText::HostOf(request.Hosts.front()).value_or("");
    const bool isHost = host == "a" || host == "localhost" || host == request.LocalAddress;
    Fuzzing::Check(isHost == (answer.Status != 421), "the machine answers to its names alone");
    Fuzzing::Check(!answer.From || *answer.From <= model.Newest(), "events begin where there were some");
}

/// Whatever an event holds, viewers get a document.
void FuzzEvent(PageModel& model, const std::string& details)
{
    for (const char* const kind : {"changed", "conflict"})
    {
        model.Take({Site, "1", kind, Device, {}, details});
    }
    PageModel::Snapshot snapshot;
    std::string text;
    for (std::string piece; !(piece = model.NextPiece(snapshot, 1, {})).empty();)
    {
        text += piece;
    }
    Fuzzing::Check(nlohmann::json::accept(text), "viewers get a document");
}
} // namespace

void Fuzzing::Fuzz(std::string_view input)
{
    // The documents' library allocates in destructors: a program without memory ends, and its service starts it again.
    Tests::MemoryFaults::Clear();
    const Request request = RequestOf(input);
    PageModel model("a");
    model.SetDevice(Site, Device, DeviceRecord(DeviceRecord::DeviceState::Present, "{}", {}));
    FuzzGate(request, model);
    FuzzDesk(request, model);
    FuzzEvent(model, request.Body);
    HttpText::FormField(request.Body, "token");
    HttpText::Cookie(request.Cookies, "c");
}
