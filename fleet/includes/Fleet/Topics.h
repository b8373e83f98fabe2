#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Zent::Discovery::Fleet
{
/// How devices are called on a broker: one of their MAC addresses as 02-00-00-00-00-0a.
class DeviceId final
{
public:
    DeviceId() = delete;

    static bool Is(std::string_view text);

    /// From the library's form, 02:00:00:00:00:0A, and back. Nothing for other texts.
    static std::optional<std::string> FromMAC(std::string_view address);
    static std::optional<std::string> ToMAC(std::string_view id);
};

/// What a topic is about, as a reader of all sites needs to know.
struct Topic
{
    enum class TopicKind
    {
        State,
        Manifest,
        Device,
        Events,
        Commands,
        Reply
    };

    TopicKind Kind;
    std::string Site;
    std::size_t Part = 0;    // of a manifest: counted from 1; 0 is the manifest itself
    std::string Device = {}; // its id
    std::string Client = {}; // whom a reply goes to

    /// Nothing for a topic that is none of these, whatever it is.
    static std::optional<Topic> Parse(std::string_view text);
};

/// The topics of one site.
class SiteTopics final
{
public:
    static constexpr std::size_t MaximumNameBytes = 64;

    /// Letters, digits, '-', '_' and '.', so that a name can neither leave its place in a topic nor match other sites.
    static bool IsName(std::string_view site);

    /// @throws std::invalid_argument with the reason when it is no site's name.
    explicit SiteTopics(std::string site);

    const std::string& Site() const { return site; }

    /// What all of them begin with, the slash included.
    const std::string& Prefix() const { return root; }

    std::string State() const { return root + "state"; }

    std::string Manifest() const { return root + "manifest"; }

    /// number counts from 1.
    std::string ManifestPart(std::size_t number) const { return root + "manifest/" + std::to_string(number); }

    std::string Device(std::string_view id) const { return root + "devices/" + std::string(id); }

    /// Filters of a subscription: the states of all sites, and all devices of this one.
    static std::string AllStates();

    std::string AllDevices() const { return root + "devices/+"; }

    std::string Events() const { return root + "events"; }

    std::string Commands() const { return root + "commands"; }

    /// Below it a client may name any topic for replies.
    std::string Replies(std::string_view client) const { return root + "replies/" + std::string(client) + "/"; }

    /// The client that a reply to this topic goes to; nothing for any other topic: whoever sends a command must not
    /// make the agent write elsewhere.
    std::optional<std::string> ReplyClient(std::string_view topic) const;

private:
    const std::string site;
    const std::string root;
};
} // namespace Zent::Discovery::Fleet
