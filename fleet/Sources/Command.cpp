#include "Fleet/Command.h"

#include "HostileJson.h"

#include <algorithm>
#include <iterator>

using Json = Zent::Discovery::Fleet::HostileJson::Json;

namespace Zent::Discovery::Fleet
{
namespace
{
constexpr std::string_view KindNames[] = {"discover", "refresh", "rename", "configure"};
constexpr std::size_t MaximumBytes = std::size_t{64} * 1024;
constexpr std::size_t MaximumReplyBytes = std::size_t{256} * 1024;
constexpr std::size_t MaximumCorrelationBytes = 128;
constexpr std::size_t MaximumAuditTextBytes = 200;

void CheckMessage(const CommandMessage& message, const SiteTopics& topics)
{
    if (!topics.ReplyClient(message.ResponseTopic))
    {
        throw Refusal("foreign-topic", "replies go to " + topics.Replies("<client>") + "... alone");
    }
    if (message.CorrelationData.size() > MaximumCorrelationBytes)
    {
        throw Refusal("bad-command",
                      "the correlation data is longer than " + std::to_string(MaximumCorrelationBytes) + " bytes");
    }
    if (message.IsRetained)
    {
        throw Refusal("retained", "a retained command would be carried out again and again");
    }
    if (!message.ExpirySeconds)
    {
        throw Refusal("no-expiry", "a command needs an expiry of at most " +
                                       std::to_string(Command::MaximumAge.count()) + " seconds");
    }
    if (*message.ExpirySeconds == 0)
    {
        throw Refusal("expired", "the command has come too late");
    }
    if (*message.ExpirySeconds > Command::MaximumAge.count())
    {
        throw Refusal("expiry-too-long", "the expiry of " + std::to_string(*message.ExpirySeconds) +
                                             " seconds is longer than " + std::to_string(Command::MaximumAge.count()));
    }
}

Command ReadDocument(const Json& document)
{
    const auto* const kind = std::ranges::find(KindNames, HostileJson::Text(document, "Command"));
    if (kind == std::end(KindNames))
    {
        throw std::invalid_argument("\"Command\" is none of discover, refresh, rename and configure");
    }
    Command command{static_cast<Command::CommandKind>(kind - std::begin(KindNames))};
    if (command.Kind == Command::CommandKind::Discover)
    {
        return command;
    }
    command.Device = HostileJson::Text(document, "Device");
    if (!DeviceId::Is(command.Device))
    {
        throw std::invalid_argument("\"Device\" is no id such as 02-00-00-00-00-0a");
    }
    if (command.Kind != Command::CommandKind::Refresh)
    {
        command.Revision = HostileJson::Text(document, "Revision", 64);
    }
    if (command.Kind == Command::CommandKind::Rename)
    {
        command.HostName = HostileJson::Text(document, "HostName");
    }
    if (command.Kind == Command::CommandKind::Configure)
    {
        const auto settings = document.find("Settings");
        if (settings == document.end() || !settings->is_object())
        {
            throw std::invalid_argument("\"Settings\" is no object with those of an interface");
        }
        command.Settings = HostileJson::Dump(*settings);
    }
    return command;
}

std::string Cut(std::string_view text)
{
    return HostileJson::ValidUtf8(text.substr(0, MaximumAuditTextBytes));
}

std::string OptionalText(const Json& document, const char* key)
{
    return document.contains(key) ? HostileJson::Text(document, key, 4096) : "";
}
} // namespace

Command Command::Read(const CommandMessage& message, const SiteTopics& topics)
{
    CheckMessage(message, topics);
    try
    {
        return ReadDocument(HostileJson::ParseObject(message.Payload, MaximumBytes));
    }
    catch (const std::invalid_argument& error)
    {
        throw Refusal("bad-command", error.what());
    }
}

const char* Command::KindName() const
{
    return KindNames[static_cast<std::size_t>(Kind)].data();
}

void Command::CheckRevision(const std::string& current) const
{
    if (current != Revision)
    {
        throw Refusal("stale", "the device has changed since: its revision is " + current);
    }
}

std::string Command::ToJson() const
{
    Json document = {{"Command", KindName()}};
    for (const auto& [key, text] : {std::pair("Device", &Device), std::pair("Revision", &Revision)})
    {
        if (!text->empty())
        {
            document[key] = *text;
        }
    }
    if (Kind == CommandKind::Rename)
    {
        document["HostName"] = HostName;
    }
    if (Kind == CommandKind::Configure)
    {
        document["Settings"] = Json::parse(Settings);
    }
    return HostileJson::Dump(document);
}

Verdict Verdict::Parse(std::string_view bytes)
{
    const Json document = HostileJson::ParseObject(bytes, MaximumReplyBytes);
    return {HostileJson::Text(document, "Verdict"), OptionalText(document, "Code"), OptionalText(document, "Text"),
            document.contains("Details") ? HostileJson::Dump(document["Details"]) : ""};
}

std::string Verdict::ToJson() const
{
    Json document = {{"Verdict", Name}};
    if (!Code.empty())
    {
        document["Code"] = Code;
    }
    if (!Text.empty())
    {
        document["Text"] = Text;
    }
    if (!Details.empty())
    {
        document["Details"] = Json::parse(Details);
    }
    return HostileJson::Dump(document);
}

std::string Verdict::AuditLine(const CommandMessage& message,
                               const Command* command,
                               const SiteTopics& topics,
                               WallTime now) const
{
    const std::optional<std::string> sender = topics.ReplyClient(message.ResponseTopic);
    Json line = {{"Time", UtcTime::ToText(now)},
                 {"Sender", sender ? Json(*sender) : Json()},
                 {"ResponseTopic", Cut(message.ResponseTopic)},
                 {"Verdict", Name}};
    if (!Code.empty())
    {
        line["Code"] = Code;
        line["Text"] = Cut(Text);
    }
    if (command == nullptr)
    {
        line["Message"] = Cut(message.Payload);
        return HostileJson::Dump(line);
    }
    line["Command"] = Json::parse(command->ToJson());
    return HostileJson::Dump(line);
}
} // namespace Zent::Discovery::Fleet
