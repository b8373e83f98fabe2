#include "Fleet/DeviceRecord.h"

#include "HostileJson.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

using Json = Zent::Discovery::Fleet::HostileJson::Json;

namespace Zent::Discovery::Fleet
{
namespace
{
constexpr std::string_view StateNames[] = {"present", "gone", "left", "flapping"};
constexpr std::size_t MaximumOtherBytes = 1024; // of a record beside its host

std::string CheckedHost(const Json& document)
{
    const auto host = document.find("Host");
    if (host == document.end() || !host->is_object())
    {
        throw std::invalid_argument("\"Host\" is no object");
    }
    std::string text = HostileJson::Dump(*host);
    if (text.size() > DeviceRecord::MaximumHostBytes)
    {
        throw std::invalid_argument("\"Host\" is longer than " + std::to_string(DeviceRecord::MaximumHostBytes) +
                                    " bytes");
    }
    return text;
}
} // namespace

std::string DeviceRecord::HostOf(std::string_view document)
{
    const std::string text = HostileJson::ValidUtf8(document);
    return CheckedHost(HostileJson::ParseObject(text, text.size()));
}

DeviceRecord DeviceRecord::Parse(std::string_view bytes)
{
    const Json document = HostileJson::ParseObject(bytes, MaximumHostBytes + MaximumOtherBytes);
    const auto* const state = std::ranges::find(StateNames, HostileJson::Text(document, "State"));
    if (state == std::end(StateNames))
    {
        throw std::invalid_argument("\"State\" is unknown");
    }
    const std::optional<WallTime> since = UtcTime::Parse(HostileJson::Text(document, "Since"));
    if (!since)
    {
        throw std::invalid_argument("\"Since\" is no time");
    }
    DeviceRecord record(static_cast<DeviceState>(state - std::begin(StateNames)), CheckedHost(document), *since);
    record.revision = HostileJson::Text(document, "Revision", 64); // its publisher's, not what ours would be
    return record;
}

DeviceRecord::DeviceRecord(DeviceState state, std::string host, WallTime since)
    : state(state)
    , host(std::move(host))
    , since(since)
    , revision(HostileJson::Digest(StateName() + this->host))
{
}

const char* DeviceRecord::StateName() const
{
    return StateNames[static_cast<std::size_t>(state)].data();
}

bool DeviceRecord::IsOverdue(WallTime now) const
{
    return IsAway() && now - since > KeptAfterGone;
}

std::string DeviceRecord::ToJson() const
{
    const Json head = {{"State", StateName()}, {"Revision", revision}, {"Since", UtcTime::ToText(since)}};
    std::string text = HostileJson::Dump(head);
    text.pop_back();
    return text + R"(,"Host":)" + host + "}";
}
} // namespace Zent::Discovery::Fleet
