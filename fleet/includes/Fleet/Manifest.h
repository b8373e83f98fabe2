#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Fleet
{
/// The devices of a site with the revisions of their records, by which a reader knows whether it has them all: a
/// broker that drops some of many retained messages tells nobody.
class Manifest final
{
public:
    using Revisions = std::map<std::string, std::string>; // by the device's id

    /// More devices are told in parts, beside the manifest.
    static constexpr std::size_t PartDevices = 1000;

    static constexpr std::size_t MaximumParts = 100;

    /// A retained message of a manifest's topics.
    struct Document
    {
        std::size_t Part; // 0 is the manifest itself
        std::string Json;
    };

    /// What a reader has to ask for, and what it has to drop. Ids of devices.
    struct Difference
    {
        std::vector<std::string> Missing; // told, and not held
        std::vector<std::string> Stale;   // held in another revision
        std::vector<std::string> Extra;   // held, and not told
    };

    Manifest() = delete;

    /// The parts first, if there are any, so that the manifest never tells of one that is not there:
    /// {"Devices":2,"Parts":[],"Records":{"02-00-00-00-00-01":"<revision>",...},"Revision":".."}; with parts "Parts"
    /// has their revisions, and each one is {"Records":{..},"Revision":".."}.
    static std::vector<Document> Write(const Revisions& revisions);

    static Difference Compare(const Revisions& told, const Revisions& held);
};

/// Puts a manifest together from the messages of its topics, in whichever order they come. Whatever a broker gives may
/// come.
class ManifestReader final
{
public:
    /// Takes a message; one without bytes says that there is none any more.
    /// @throws std::invalid_argument with the reason when it is none of a manifest; nothing has changed.
    void Take(std::size_t part, std::string_view bytes);

    /// Whether the manifest itself has come.
    bool HasHead() const { return head.has_value(); }

    /// How many devices it tells of; 0 before.
    std::size_t Devices() const { return head ? head->Devices : 0; }

    /// How many parts it tells of; 0 before.
    std::size_t Parts() const { return head ? head->Parts.size() : 0; }

    std::string Revision() const { return head ? head->Revision : ""; }

    /// The parts that have not come, or not in the revision that the manifest tells.
    std::vector<std::size_t> MissingParts() const;

    /// The devices that have been told of so far.
    Manifest::Revisions Known() const;

    /// All devices once nothing is missing.
    std::optional<Manifest::Revisions> Whole() const;

private:
    struct Head
    {
        std::size_t Devices;
        std::string Revision;
        std::vector<std::string> Parts; // their revisions
        Manifest::Revisions Records;
    };

    struct Part
    {
        std::string Revision;
        Manifest::Revisions Records;
    };

    std::optional<Head> head;
    std::map<std::size_t, Part> parts; // by their number
};
} // namespace Zent::Discovery::Fleet
