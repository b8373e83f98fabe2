#include "Fleet/Manifest.h"

#include "Fleet/Topics.h"
#include "HostileJson.h"

#include <stdexcept>
#include <utility>

using Json = Zent::Discovery::Fleet::HostileJson::Json;

namespace Zent::Discovery::Fleet
{
namespace
{
constexpr std::size_t MaximumBytes = std::size_t{256} * 1024; // of a part; 1,000 devices take some 40 KiB
constexpr std::size_t MaximumRevisionBytes = 64;

Manifest::Revisions RecordsOf(const Json& document)
{
    const auto records = document.find("Records");
    if (records == document.end() || !records->is_object() || records->size() > Manifest::PartDevices)
    {
        throw std::invalid_argument("\"Records\" is no object of at most " + std::to_string(Manifest::PartDevices) +
                                    " members");
    }
    Manifest::Revisions revisions;
    for (const auto& [id, revision] : records->items())
    {
        if (!DeviceId::Is(id) || !revision.is_string() ||
            revision.get_ref<const std::string&>().size() > MaximumRevisionBytes)
        {
            throw std::invalid_argument("\"Records\" has a member that is no device with its revision");
        }
        revisions.emplace(id, revision.get<std::string>());
    }
    return revisions;
}

std::vector<std::string> PartsOf(const Json& document)
{
    const auto parts = document.find("Parts");
    if (parts == document.end() || !parts->is_array() || parts->size() > Manifest::MaximumParts)
    {
        throw std::invalid_argument("\"Parts\" is no array of at most " + std::to_string(Manifest::MaximumParts) +
                                    " elements");
    }
    std::vector<std::string> revisions;
    for (const Json& each : *parts)
    {
        if (!each.is_string())
        {
            throw std::invalid_argument("\"Parts\" has an element that is no text");
        }
        revisions.push_back(each.get<std::string>());
    }
    return revisions;
}

std::size_t CountOf(const Json& document)
{
    const auto devices = document.find("Devices");
    if (devices == document.end() || !devices->is_number_unsigned() ||
        devices->get<std::uint64_t>() > Manifest::PartDevices * Manifest::MaximumParts)
    {
        throw std::invalid_argument("\"Devices\" is no number of devices");
    }
    return devices->get<std::size_t>();
}

Json PartOf(Json records)
{
    return {{"Revision", HostileJson::Digest(HostileJson::Dump(records))}, {"Records", std::move(records)}};
}
} // namespace

std::vector<Manifest::Document> Manifest::Write(const Revisions& revisions)
{
    std::vector<Json> parts;
    Json records = Json::object();
    for (const auto& [id, revision] : revisions)
    {
        if (records.size() == PartDevices)
        {
            parts.push_back(PartOf(std::exchange(records, Json::object())));
        }
        records[id] = revision;
    }
    std::vector<Document> documents;
    Json head = {
        {"Devices", revisions.size()}, {"Revision", ""}, {"Parts", Json::array()}, {"Records", Json::object()}};
    if (parts.empty())
    {
        head["Records"] = std::move(records);
    }
    else
    {
        parts.push_back(PartOf(std::move(records)));
    }
    for (const Json& part : parts)
    {
        head["Parts"].push_back(part["Revision"]);
        documents.push_back({documents.size() + 1, HostileJson::Dump(part)});
    }
    head["Revision"] = HostileJson::Digest(HostileJson::Dump(head));
    documents.push_back({0, HostileJson::Dump(head)});
    return documents;
}

Manifest::Difference Manifest::Compare(const Revisions& told, const Revisions& held)
{
    Difference difference;
    for (const auto& [id, revision] : told)
    {
        const auto found = held.find(id);
        if (found == held.end())
        {
            difference.Missing.push_back(id);
        }
        else if (found->second != revision)
        {
            difference.Stale.push_back(id);
        }
    }
    for (const auto& [id, revision] : held)
    {
        if (!told.contains(id))
        {
            difference.Extra.push_back(id);
        }
    }
    return difference;
}

void ManifestReader::Take(std::size_t part, std::string_view bytes)
{
    if (part > Manifest::MaximumParts)
    {
        throw std::invalid_argument("part " + std::to_string(part) + " is more than a manifest has");
    }
    if (bytes.empty())
    {
        if (part == 0)
        {
            head.reset();
        }
        parts.erase(part);
        return;
    }
    const Json document = HostileJson::ParseObject(bytes, MaximumBytes);
    std::string revision = HostileJson::Text(document, "Revision", MaximumRevisionBytes);
    if (part == 0)
    {
        head = Head{CountOf(document), std::move(revision), PartsOf(document), RecordsOf(document)};
    }
    else
    {
        parts.insert_or_assign(part, Part{std::move(revision), RecordsOf(document)});
    }
}

std::vector<std::size_t> ManifestReader::MissingParts() const
{
    std::vector<std::size_t> missing;
    for (std::size_t number = 1; head && number <= head->Parts.size(); ++number)
    {
        const auto found = parts.find(number);
        if (found == parts.end() || found->second.Revision != head->Parts[number - 1])
        {
            missing.push_back(number);
        }
    }
    return missing;
}

Manifest::Revisions ManifestReader::Known() const
{
    Manifest::Revisions all = head ? head->Records : Manifest::Revisions();
    for (const auto& [number, part] : parts)
    {
        if (number <= Parts())
        {
            all.insert(part.Records.begin(), part.Records.end());
        }
    }
    return all;
}

std::optional<Manifest::Revisions> ManifestReader::Whole() const
{
    if (!head || !MissingParts().empty())
    {
        return std::nullopt;
    }
    Manifest::Revisions all = Known();
    return all.size() == head->Devices ? std::optional(std::move(all)) : std::nullopt;
}
} // namespace Zent::Discovery::Fleet
