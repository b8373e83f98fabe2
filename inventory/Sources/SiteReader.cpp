#include "SiteReader.h"

#include "AsciiCase.h"
#include "Inventory/ChangeRequest.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <unordered_map>
#include <utility>

namespace Zent::Discovery::Inventory
{
namespace
{
using Json = nlohmann::json;

constexpr std::string_view BetweenTokens = " \t\r\n,:";
constexpr const char* Keys[] = {"MACAddress", "HostName", "IPAddress", "SubNetMask", "DefaultGateway"};

/// As the library matches keys.
bool IsSameKey(std::string_view left, std::string_view right)
{
    return std::ranges::equal(left, right, {}, &AsciiCase::Lower, &AsciiCase::Lower);
}

/// Takes the entries from the events of the parser. It tells no places, but each event stands for one token, whose
/// place is found in the text.
class Entries final : public Json::json_sax_t
{
public:
    Entries(std::string_view text, const std::string& name)
        : text(text)
        , name(name)
    {
    }

    std::vector<SiteEntry> Take() { return std::move(entries); }

    bool start_array(std::size_t /*size*/) override
    {
        NextToken();
        if (isInArray)
        {
            Fail("an array has no place here");
        }
        return isInArray = true;
    }

    bool end_array() override
    {
        NextToken();
        return true;
    }

    bool start_object(std::size_t /*size*/) override
    {
        NextToken();
        if (!isInArray || isInObject)
        {
            Fail(isInArray ? "an object has no place here" : "a site file is an array of objects");
        }
        values.clear();
        objectPlace = name + ": line " + std::to_string(line) + ", column " + std::to_string(token - lineStart + 1);
        return isInObject = true;
    }

    bool key(std::string& value) override
    {
        NextToken();
        const auto* const known =
            std::ranges::find_if(Keys, [&value](const char* each) { return IsSameKey(each, value); });
        if (known == std::end(Keys))
        {
            Fail('"' + value + "\" is none of MACAddress, HostName, IPAddress, SubNetMask and DefaultGateway");
        }
        lastKey = *known;
        if (values.contains(lastKey))
        {
            Fail('"' + lastKey + "\" is there twice");
        }
        return true;
    }

    bool string(std::string& value) override
    {
        NextToken();
        if (!isInObject)
        {
            Fail("a text has no place here");
        }
        values.emplace(lastKey, Value{value, token});
        return true;
    }

    bool end_object() override
    {
        NextToken();
        isInObject = false;
        entries.push_back(Entry());
        return true;
    }

    bool null() override { return Refuse("null"); }

    bool boolean(bool value) override { return Refuse(value ? "true" : "false"); }

    bool number_integer(std::int64_t value) override { return Refuse(std::to_string(value)); }

    bool number_unsigned(std::uint64_t value) override { return Refuse(std::to_string(value)); }

    bool number_float(double /*value*/, const std::string& written) override { return Refuse(written); }

    bool binary(Json::binary_t& /*value*/) override { return false; } // JSON has none

    bool parse_error(std::size_t position, const std::string& /*last*/, const Json::exception& error) override
    {
        const std::string_view reason = error.what();
        const std::size_t end = reason.find(": "); // before it stands a place that leaves out the line
        FailAt(std::min(std::max<std::size_t>(position, 1) - 1, text.size()),
               std::string(reason.substr(end == std::string_view::npos ? 0 : end + 2)));
    }

private:
    /// What stands behind a key.
    struct Value
    {
        std::string Text;
        std::size_t Position;
    };

    /// Moves on to the token that the parser has just told of.
    void NextToken()
    {
        const std::size_t start = tokenEnd;
        token = std::min(text.find_first_not_of(BetweenTokens, start), text.size());
        for (std::size_t i = start; i < token; ++i)
        {
            if (text[i] == '\n')
            {
                ++line;
                lineStart = i + 1;
            }
        }
        tokenEnd = token + 1;
        if (text.substr(token, 1) == "\"")
        {
            while (tokenEnd < text.size() && text[tokenEnd] != '"')
            {
                tokenEnd += text[tokenEnd] == '\\' ? 2u : 1u;
            }
            ++tokenEnd;
        }
    }

    bool Refuse(const std::string& value)
    {
        NextToken();
        Fail(value + " is no text");
    }

    [[noreturn]] void Fail(const std::string& reason) const { FailAt(token, reason); }

    [[noreturn]] void FailAt(std::size_t position, const std::string& reason) const
    {
        const std::string_view before = text.substr(0, position);
        const std::size_t start = before.rfind('\n') + 1; // 0 in the first line
        throw std::invalid_argument(name + ": line " + std::to_string(std::ranges::count(before, '\n') + 1) +
                                    ", column " + std::to_string(position - start + 1) + ": " + reason);
    }

    /// Of the object that has just ended.
    SiteEntry Entry()
    {
        const auto mac = values.find("MACAddress");
        if (mac == values.end())
        {
            throw std::invalid_argument(objectPlace + ": the entry has no \"MACAddress\"");
        }
        SiteEntry entry{.MACAddress = Normal(mac->second, ChangeRequest::Rename(mac->second.Text, "")).MACAddress,
                        .IPAddress = Address("IPAddress"),
                        .SubNetMask = Address("SubNetMask"),
                        .DefaultGateway = Address("DefaultGateway"),
                        .Place = objectPlace};
        RefuseSecond(entry.MACAddress, mac->second);
        if (const auto hostName = values.find("HostName"); hostName != values.end())
        {
            entry.HostName = hostName->second.Text;
        }
        if (entry.IPAddress)
        {
            RefuseSecond(*entry.IPAddress, values.at("IPAddress"));
        }
        if (entry.DefaultGateway == "0.0.0.0")
        {
            entry.DefaultGateway = "";
        }
        return entry;
    }

    std::optional<std::string> Address(const char* key) const
    {
        const auto found = values.find(key);
        if (found == values.end() || (found->second.Text.empty() && found->first == "DefaultGateway"))
        {
            return found == values.end() ? std::nullopt : std::optional<std::string>("");
        }
        return Normal(found->second, ChangeRequest::RenameAt(found->second.Text, "")).IPAddress;
    }

    /// The address of a request in its normal form.
    Device::Interface Normal(const Value& written, const ChangeRequest& request) const
    {
        try
        {
            return request.Normal().Interface;
        }
        catch (const std::invalid_argument& error)
        {
            FailAt(written.Position, error.what());
        }
    }

    /// No address may stand in two entries.
    void RefuseSecond(const std::string& address, const Value& written)
    {
        if (const auto [first, isNew] = placeOf.try_emplace(address, objectPlace); !isNew)
        {
            FailAt(written.Position, address + " is there twice; first at " + first->second);
        }
    }

    const std::string_view text;
    const std::string& name;
    std::size_t token = 0; // where the last one begins
    std::size_t tokenEnd = 0;
    std::size_t line = 1;      // of the token
    std::size_t lineStart = 0; // and where that line begins
    bool isInArray = false;
    bool isInObject = false;
    std::string objectPlace;
    std::string lastKey;
    std::map<std::string, Value> values;                  // of the object
    std::unordered_map<std::string, std::string> placeOf; // addresses
    std::vector<SiteEntry> entries;
};
} // namespace

std::vector<SiteEntry> SiteReader::Read(std::string_view text, const std::string& name)
{
    if (text.find_first_not_of(BetweenTokens) == std::string_view::npos)
    {
        throw std::invalid_argument(name + " is empty, which is no site file");
    }
    Entries entries(text, name);
    Json::sax_parse(text, &entries);
    return entries.Take();
}
} // namespace Zent::Discovery::Inventory
