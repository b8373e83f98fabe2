#include "OptionsReader.h"

#include <nlohmann/json.hpp>

#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

namespace Zent::Discovery::Inventory
{
namespace
{
using nlohmann::json;

constexpr std::int64_t Day = 86400000; // milliseconds
constexpr std::int64_t MaximumCount = 1000000;

[[noreturn]] void Refuse(const std::string& reason)
{
    throw std::invalid_argument("options: " + reason);
}

/// The members of an object; each must be asked for.
class Members final
{
public:
    explicit Members(std::string_view text)
    {
        if (text.empty())
        {
            return;
        }
        try
        {
            object = json::parse(text);
        }
        catch (const json::parse_error& error)
        {
            const std::string what =
                error.what(); // [json.exception.parse_error.101] parse error at line 1, column 2: ...
            Refuse(what.substr(what.find("] ") + 2));
        }
        if (!object.is_object())
        {
            Refuse("not a JSON object");
        }
    }

    template <class TValue>
    void Number(const char* key, std::int64_t minimum, std::int64_t maximum, TValue& value)
    {
        const json* const member = Find(key);
        if (member == nullptr)
        {
            return;
        }
        const bool isInRange = member->is_number_integer() && *member >= minimum && *member <= maximum;
        if (!isInRange)
        {
            Refuse(Named(key, *member) + " is no whole number from " + std::to_string(minimum) + " to " +
                   std::to_string(maximum));
        }
        value = TValue{member->get<typename Value<TValue>::Number>()};
    }

    void Flag(const char* key, bool& value)
    {
        const json* const member = Find(key);
        if (member != nullptr && !member->is_boolean())
        {
            Refuse(Named(key, *member) + " is neither true nor false");
        }
        value = member == nullptr ? value : member->get<bool>();
    }

    void Text(const char* key, std::string& value)
    {
        const json* const member = Find(key);
        if (member != nullptr && !member->is_string())
        {
            Refuse(Named(key, *member) + " is no text");
        }
        value = member == nullptr ? value : member->get<std::string>();
    }

    std::vector<std::string> Texts(const char* key)
    {
        std::vector<std::string> texts;
        const json* const member = Find(key);
        if (member == nullptr)
        {
            return texts;
        }
        if (!member->is_array())
        {
            Refuse(Named(key, *member) + " is no array of texts");
        }
        for (const json& element : *member)
        {
            if (!element.is_string())
            {
                Refuse(Named(key, element) + " is no text");
            }
            texts.push_back(element.get<std::string>());
        }
        return texts;
    }

    std::vector<Network> Networks(const char* key, std::vector<Network> usual)
    {
        if (Find(key) == nullptr)
        {
            return usual;
        }
        std::vector<Network> networks;
        for (const std::string& text : Texts(key))
        {
            try
            {
                networks.push_back(Network::Parse(text));
            }
            catch (const std::invalid_argument& error)
            {
                Refuse('"' + std::string(key) + "\": " + error.what());
            }
        }
        return networks;
    }

    /// @throws std::invalid_argument when there is a member that nobody has asked for.
    void RefuseOthers() const
    {
        for (const auto& [key, value] : object.items())
        {
            if (!known.contains(key))
            {
                Refuse('"' + key + "\" is none of " + Names());
            }
        }
    }

private:
    template <class TValue>
    struct Value
    {
        using Number = TValue;
    };

    const json* Find(const char* key)
    {
        known.insert(key);
        const auto found = object.find(key);
        return found == object.end() ? nullptr : &*found;
    }

    /// Of the members that there may be.
    std::string Names() const
    {
        std::string names;
        for (const std::string& each : known)
        {
            names += names.empty() ? "" : ", ";
            names += each;
        }
        return names;
    }

    static std::string Named(const char* key, const json& value)
    {
        return '"' + std::string(key) + "\" " + value.dump(-1, ' ', false, json::error_handler_t::replace);
    }

    json object = json::object();
    std::set<std::string> known;
};

template <>
struct Members::Value<Time>
{
    using Number = Time::rep;
};
} // namespace

OptionsReader::SessionOptions OptionsReader::ReadSessionOptions(std::string_view text)
{
    SessionOptions options;
    DeviceTableOptions& table = options.Table;
    Members members(text);
    members.Number("MaximumDevices", 1, MaximumCount, table.MaximumDevices);
    members.Number("AskEvery", 0, Day, table.AskEvery);
    members.Number("StaleAfter", 1, Day, table.StaleAfter);
    members.Number("AnswerTime", 1, Day, table.AnswerTime);
    members.Number("Misses", 1, 1000, table.Misses);
    table.AcceptedConflicts = members.Texts("AcceptedConflicts");
    members.Flag("AskSystem", options.AskSystem);
    members.Text("Journal", options.Journal);
    members.RefuseOthers();
    return options;
}

SearchOptions OptionsReader::ReadSearchOptions(std::string_view text, std::vector<Network> networks)
{
    SearchOptions options;
    Members members(text);
    members.Number("Wait", 0, Day, options.Wait);
    members.Flag("Once", options.Once);
    members.Number("Expect", 0, MaximumCount, options.Expect);
    members.Flag("Sweep", options.Sweep);
    options.Networks = members.Networks("Networks", std::move(networks));
    options.Also = members.Networks("Also", {});
    members.RefuseOthers();
    return options;
}

OptionsReader::StartOptions OptionsReader::ReadChangeOptions(std::string_view text)
{
    StartOptions start;
    ChangeOptions& options = start.Change;
    Members members(text);
    bool looks = true;
    members.Flag("Look", looks);
    members.Number("Timeout", 1, Day, options.Timeout);
    Time rebootTimeout{-1};
    members.Number("RebootTimeout", 0, Day, rebootTimeout);
    members.Flag("Force", options.Force);
    members.Flag("GivesBack", options.GivesBack);
    members.Text("Undoes", start.Undoes);
    members.RefuseOthers();
    options.Look = looks ? options.Look : std::nullopt;
    options.RebootTimeout = rebootTimeout < Time{0} ? std::nullopt : std::optional(rebootTimeout);
    return start;
}
} // namespace Zent::Discovery::Inventory
