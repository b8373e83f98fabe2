#pragma once

#include "DiscoverySession.h"

#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What DiscoveryInventorySession.h gives. All text is as the device sent it: it may hold bytes that are not UTF-8.
namespace Zent::Discovery
{
/// What a device says of itself.
struct DeviceDescription
{
    std::string HostName;
    std::string DeviceType;
    std::string DeviceFamily;
    std::string SerialNumber;
    std::vector<NICSettings> NICs;
    std::optional<NICSettings> SourceNIC; ///< the interface that it was heard from, when it named it
    std::string Document; ///< all of it: {"Host":{...},"SourceNIC":{...}}, as handlers of messages have it
};

/// What has become of a device.
enum class DeviceState
{
    Present,
    Stale, ///< silent for a while; is going to be asked
    Asked,
    Gone,    ///< has answered none of several questions
    Left,    ///< has said Bye
    Flapping ///< comes and goes
};

/// A device of the inventory.
struct KnownDevice
{
    DeviceDescription Description;
    DeviceState State;
    bool IsHere; ///< neither gone nor left
    std::chrono::system_clock::time_point FirstSeen;
    std::chrono::system_clock::time_point LastSeen;
};

/// A property, such as HostName, that a device tells otherwise than before.
struct PropertyChange
{
    std::string Property;
    std::optional<std::string> Before; ///< nothing when it was not there
    std::optional<std::string> After;
};

/// Devices that cannot all be as they say.
struct DeviceConflict
{
    std::string Kind;  ///< mac, ip or name
    std::string Value; ///< the address or name that they have in common
    std::size_t Count;
    DeviceDescription First;
    DeviceDescription Second;
};

/// What can happen to a device.
enum class DeviceEvent
{
    Appeared,
    Changed,
    Left, ///< it said Bye
    Gone, ///< it answers no more
    Returned,
    Flapping, ///< it comes and goes; that is not told any more until it has settled
    Settled,
    Forgotten, ///< it turned out to be an interface of another one, or gave way to it: there are too many
    Conflict
};

/// Something that has happened to a device.
struct DeviceChange
{
    DeviceEvent Event;
    DeviceDescription Description;
    std::vector<PropertyChange> Changes;    ///< of Changed and Returned
    std::optional<DeviceConflict> Conflict; ///< of Conflict; Description is then that of the second device
};

/// What a search has found.
struct SearchResult
{
    std::vector<KnownDevice> Devices; ///< those that are here
    std::string Report;               ///< how it went: {"Devices":3,"Rounds":[...],...}, as DiscoveryInventory.h has it
};

/// A search has ended before it was complete.
class IncompleteSearch : public std::runtime_error
{
public:
    explicit IncompleteSearch(SearchResult result)
        : std::runtime_error(std::to_string(result.Devices.size()) +
                             " devices found, but the search has ended before it was complete")
        , result(std::move(result))
    {
    }

    /// What was found, and how it went.
    const SearchResult& Result() const { return result; }

private:
    SearchResult result;
};

/// What can come of a change of a device.
enum class ChangeVerdict
{
    Applied,
    RebootNeeded, ///< it does not show it, or is silent, and has said that it takes such changes when it starts anew
    Refused,      ///< it answers and does not show it
    NoAnswer,
    NotSent ///< something was wrong with it
};

/// A change of a device that has ended.
struct ChangeOutcome
{
    ChangeVerdict Verdict;
    std::string MACAddress;            ///< of the interface that was meant; empty when it is not known
    std::optional<std::string> Before; ///< what the device had, as DiscoveryInventory.h has it: {"HostName":"press-1"}
    std::optional<std::string> After;  ///< what it has said last since it was told to change
    std::string Code;                  ///< why it was not sent, such as name-taken
    std::string Text;                  ///< the same for people
    std::string UndoRequest;           ///< gives back what the device had; empty when that is not known
    std::string Entry;                 ///< the Id of its entry in the journal; empty when it has none
};

/// A change of a device as the journal has it.
struct JournalEntry
{
    std::string Id;
    std::string Time;                     ///< when it was sent, in UTC, such as 2026-03-09T14:07:09.250Z
    std::string MACAddress;               ///< of the interface that was meant; empty when it was not known
    std::optional<std::string> Before;    ///< what the device had, as in ChangeOutcome
    std::string After;                    ///< what it was to have
    std::optional<ChangeVerdict> Verdict; ///< nothing when nobody knows
    bool IsOpen;                          ///< nobody knows: the program that sent it ended before it could tell
    bool IsUndone;                        ///< it is taken back
    std::string Undoes;                   ///< the Id of the change that this one has taken back; empty as a rule
};

/// A change has ended with another verdict than Applied.
class ChangeFailed : public std::runtime_error
{
public:
    explicit ChangeFailed(ChangeOutcome outcome)
        : std::runtime_error(TextOf(outcome))
        , outcome(std::move(outcome))
    {
    }

    const ChangeOutcome& Outcome() const { return outcome; }

private:
    static std::string TextOf(const ChangeOutcome& outcome)
    {
        constexpr const char* Texts[] = {"is changed", "takes the change when it starts anew",
                                         "has not taken the change", "has not answered since it was told to change",
                                         "was not told to change: "};
        return (outcome.MACAddress.empty() ? "the device" : outcome.MACAddress) + " " +
               Texts[static_cast<std::size_t>(outcome.Verdict)] + outcome.Text +
               (outcome.Code.empty() ? "" : " (" + outcome.Code + ")");
    }

    ChangeOutcome outcome;
};

/// A value in a JSON text that a library has written, to be read while that text lasts. What is missing, and anything
/// in it, is empty.
class JsonView final
{
public:
    explicit JsonView(std::string_view text)
        : text(text)
    {
    }

    std::string_view Raw() const { return text; }

    /// Whether there is a value, be it null.
    bool Exists() const { return !text.empty(); }

    bool IsTrue() const { return text == "true"; }

    long long Number() const { return std::strtoll(std::string(text).c_str(), nullptr, 10); }

    /// The member of an object.
    JsonView operator[](std::string_view name) const
    {
        bool isName = true;
        bool isNext = false;
        JsonView found{{}};
        ForEach([&](std::string_view part) {
            if (isNext)
            {
                found = JsonView(part);
                return false;
            }
            isNext = isName && part.size() == name.size() + 2 && part.substr(1, name.size()) == name;
            isName = !isName;
            return true;
        });
        return found;
    }

    /// What make gives for each element of an array.
    template <class TMake>
    auto Map(const TMake& make) const
    {
        std::vector<decltype(make(*this))> results;
        ForEach([&](std::string_view part) {
            results.push_back(make(JsonView(part)));
            return true;
        });
        return results;
    }

    /// The characters of a string.
    std::string Text() const
    {
        std::string result;
        for (std::size_t at = 1; at + 1 < text.size() && text.front() == '"'; ++at)
        {
            if (text[at] != '\\')
            {
                result += text[at];
                continue;
            }
            constexpr std::string_view Letters = "btnfr";
            constexpr std::string_view Characters = "\b\t\n\f\r";
            const char letter = text[++at];
            if (const std::size_t known = Letters.find(letter); known != std::string_view::npos)
            {
                result += Characters[known];
            }
            else if (letter == 'u') // the libraries escape control characters alone
            {
                result += static_cast<char>(std::strtol(std::string(text.substr(at + 1, 4)).c_str(), nullptr, 16));
                at += 4;
            }
            else
            {
                result += letter;
            }
        }
        return result;
    }

    std::optional<std::string> RawIfThere() const { return Exists() ? std::optional(std::string(text)) : std::nullopt; }

    std::optional<std::string> TextIfThere() const { return Exists() ? std::optional(Text()) : std::nullopt; }

private:
    /// Takes each element of an array, each name and each value of an object, until it returns false.
    template <class TTake>
    void ForEach(const TTake& take) const
    {
        for (std::size_t begin = 1; begin < text.size();)
        {
            const std::size_t end = EndOf(begin);
            if (end == begin ? text[begin] != ',' && text[begin] != ':' : !take(text.substr(begin, end - begin)))
            {
                return;
            }
            begin = end == begin ? end + 1 : end;
        }
    }

    /// Where the value ends that begins there.
    std::size_t EndOf(std::size_t at) const
    {
        std::size_t depth = 0;
        for (; at < text.size(); ++at)
        {
            switch (text[at])
            {
            case '"':
                at = ClosingQuote(at);
                break;
            case '{':
            case '[':
                ++depth;
                break;
            case '}':
            case ']':
                if (depth == 0)
                {
                    return at;
                }
                --depth;
                break;
            case ',':
            case ':':
                if (depth == 0)
                {
                    return at;
                }
                break;
            default:
                break;
            }
        }
        return at;
    }

    std::size_t ClosingQuote(std::size_t at) const
    {
        for (++at; at < text.size() && text[at] != '"'; ++at)
        {
            if (text[at] == '\\')
            {
                ++at;
            }
        }
        return at;
    }

    std::string_view text;
};

/// Makes records of the documents of the library DiscoveryInventory.
class DiscoveryRecords final
{
public:
    static DeviceDescription ReadDescription(const JsonView& document)
    {
        const JsonView host = document["Host"];
        const JsonView source = document["SourceNIC"];
        return {host["HostName"].Text(),     host["DeviceType"].Text(),
                host["DeviceFamily"].Text(), host["SerialNumber"].Text(),
                host["NICs"].Map(&ReadNic),  source.Exists() ? std::optional(ReadNic(source)) : std::nullopt,
                std::string(document.Raw())};
    }

    /// start is the time that the inventory calls 0.
    static KnownDevice ReadDevice(const JsonView& row, std::chrono::system_clock::time_point start)
    {
        constexpr std::string_view States[] = {"present", "stale", "asked", "gone", "left", "flapping"};
        return {ReadDescription(row["Device"]), static_cast<DeviceState>(IndexOf(States, row["State"].Text())),
                row["Here"].IsTrue(), start + std::chrono::milliseconds(row["FirstSeen"].Number()),
                start + std::chrono::milliseconds(row["LastSeen"].Number())};
    }

    /// Nothing when the event is of no device.
    static std::optional<DeviceChange> ReadChange(const JsonView& event)
    {
        constexpr std::string_view Events[] = {"Appeared", "Changed", "Left",      "Gone",    "Returned",
                                               "Flapping", "Settled", "Forgotten", "Conflict"};
        const std::size_t index = IndexOf(Events, event["Event"].Text());
        if (index == std::size(Events))
        {
            return std::nullopt;
        }
        const JsonView conflict = event["Conflict"];
        return DeviceChange{static_cast<DeviceEvent>(index), ReadDescription(event["Device"]),
                            event["Changes"].Map(&ReadPropertyChange),
                            conflict.Exists() ? std::optional(ReadConflict(conflict)) : std::nullopt};
    }

    /// Of the event ChangeEnded.
    static ChangeOutcome ReadOutcome(const JsonView& event)
    {
        const JsonView change = event["Change"];
        return {ReadVerdict(change).value_or(ChangeVerdict::NoAnswer),
                change["MACAddress"].Text(),
                change["Before"].RawIfThere(),
                change["After"].RawIfThere(),
                change["Code"].Text(),
                change["Text"].Text(),
                std::string(event["Undo"].Raw()),
                event["Entry"].Text()};
    }

    static JournalEntry ReadEntry(const JsonView& entry)
    {
        const std::string state = entry["State"].Text();
        return {entry["Id"].Text(),
                entry["Time"].Text(),
                entry["MACAddress"].Text(),
                entry["Before"].RawIfThere(),
                std::string(entry["After"].Raw()),
                ReadVerdict(entry),
                state == "open",
                state == "undone",
                entry["Undoes"].Text()};
    }

private:
    template <std::size_t Count>
    static std::size_t IndexOf(const std::string_view (&names)[Count], const std::string& name)
    {
        std::size_t index = 0;
        while (index < Count && names[index] != name)
        {
            ++index;
        }
        return index;
    }

    static std::optional<ChangeVerdict> ReadVerdict(const JsonView& change)
    {
        constexpr std::string_view Verdicts[] = {"applied", "reboot-needed", "refused", "no-answer", "not-sent"};
        const std::size_t index = IndexOf(Verdicts, change["Verdict"].Text());
        return index == std::size(Verdicts) ? std::nullopt : std::optional(static_cast<ChangeVerdict>(index));
    }

    static NICSettings ReadNic(const JsonView& nic)
    {
        return {nic["FriendlyName"].Text(), nic["MACAddress"].Text(),     nic["IPAddress"].Text(),
                nic["SubNetMask"].Text(),   nic["DefaultGateway"].Text(), nic["MTU"].Text()};
    }

    static PropertyChange ReadPropertyChange(const JsonView& change)
    {
        return {change["Property"].Text(), change["Before"].TextIfThere(), change["After"].TextIfThere()};
    }

    static DeviceConflict ReadConflict(const JsonView& conflict)
    {
        return {conflict["Kind"].Text(), conflict["Value"].Text(), static_cast<std::size_t>(conflict["Count"].Number()),
                ReadDescription(conflict["First"]), ReadDescription(conflict["Second"])};
    }
};
} // namespace Zent::Discovery
