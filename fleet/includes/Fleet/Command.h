#pragma once

#include "Fleet/Topics.h"
#include "Fleet/UtcTime.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

namespace Zent::Discovery::Fleet
{
/// A command as it came from the broker, with the properties of the message.
struct CommandMessage
{
    std::string Payload;
    std::string ResponseTopic = {};
    std::string CorrelationData = {};
    std::optional<std::uint32_t> ExpirySeconds = {}; // what was left of them when it came
    bool IsRetained = false;
};

/// Why a command is not carried out.
class Refusal final : public std::runtime_error
{
public:
    /// code is for programs, text for people.
    Refusal(std::string code, const std::string& text)
        : std::runtime_error(text)
        , code(std::move(code))
    {
    }

    const std::string& Code() const { return code; }

private:
    std::string code;
};

/// What somebody who may write to a site's topic of commands wants to have done.
class Command final
{
public:
    enum class CommandKind
    {
        Discover,
        Refresh,
        Rename,
        Configure
    };

    /// So old a command may become: a device must not change long after everybody has given up.
    static constexpr std::chrono::seconds MaximumAge{30};

    /// @throws Refusal: foreign-topic when the reply would go elsewhere than to a client's own topics, retained,
    /// no-expiry, expired and expiry-too-long, bad-command.
    static Command Read(const CommandMessage& message, const SiteTopics& topics);

    CommandKind Kind;
    std::string Device = {};   // its id; empty for Discover
    std::string Revision = {}; // of the record that the sender saw; only for Rename and Configure
    std::string HostName = {}; // for Rename
    std::string Settings = {}; // for Configure: one of its interfaces as a JSON object

    const char* KindName() const;

    /// Refuses what was meant for a device that is another one by now.
    /// @throws Refusal: stale when the sender saw another revision.
    void CheckRevision(const std::string& current) const;

    /// What a client sends, for instance {"Command":"rename","Device":"02-00-00-00-00-01","HostName":"press-4",
    /// "Revision":".."}.
    std::string ToJson() const;
};

/// What has become of a command.
struct Verdict
{
    std::string Name;         // done, applied, reboot-needed, refused, no-answer or not-sent
    std::string Code = {};    // of a refusal
    std::string Text = {};    // for people
    std::string Details = {}; // a JSON object; empty when there are none

    static Verdict Of(const Refusal& refusal) { return {"not-sent", refusal.Code(), refusal.what()}; }

    /// @throws std::invalid_argument with the reason when the bytes are no reply. Whatever a broker gives may come.
    static Verdict Parse(std::string_view bytes);

    /// The reply: {"Verdict":"not-sent","Code":"stale","Text":".."}, and "Details" if there are some.
    std::string ToJson() const;

    /// A line for the log of commands, without its end. What the message says of itself is not to be trusted, and is
    /// cut. command is null when it could not be read.
    std::string AuditLine(const CommandMessage& message,
                          const Command* command,
                          const SiteTopics& topics,
                          WallTime now) const;
};
} // namespace Zent::Discovery::Fleet
