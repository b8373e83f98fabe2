#include "Inventory/Event.h"

#include "JsonText.h"

#include <algorithm>
#include <stdexcept>

namespace Zent::Discovery::Inventory
{
namespace
{
const char* NameOf(Conflict::ConflictKind kind)
{
    return kind == Conflict::ConflictKind::MAC ? "mac" : kind == Conflict::ConflictKind::IP ? "ip" : "name";
}

std::string JsonOf(const Conflict& conflict)
{
    return JsonText()
        .Text("Kind", NameOf(conflict.Kind))
        .Text("Value", conflict.Value)
        .Number("Count", static_cast<std::int64_t>(conflict.Count))
        .Raw("First", conflict.First->Message.Document)
        .Raw("Second", conflict.Second->Message.Document)
        .Take();
}

} // namespace

std::string Conflict::ToString() const
{
    return std::string(NameOf(Kind)) + ":" + Value;
}

void Conflict::CheckText(std::string_view text)
{
    constexpr std::string_view Kinds[] = {"mac:", "ip:", "name:"};
    if (std::ranges::none_of(
            Kinds, [text](std::string_view kind) { return text.starts_with(kind) && text.size() > kind.size(); }))
    {
        throw std::invalid_argument('"' + std::string(text) +
                                    "\" is no conflict, such as mac:02:00:00:00:00:01, ip:10.0.0.5 or name:press-4");
    }
}

const char* Event::KindName() const
{
    static constexpr const char* Names[] = {
        "Appeared", "Changed",  "Left",         "Gone",    "Returned", "Flapping",   "Settled",     "Forgotten",
        "Conflict", "PortHeld", "PortReleased", "Offline", "Online",   "RoundEnded", "SearchEnded", "ChangeEnded"};
    return Names[static_cast<std::size_t>(Kind)];
}

std::string Event::ToJson() const
{
    JsonText json;
    json.Text("Event", KindName()).Number("When", When.count());
    if (Subject != nullptr)
    {
        json.Raw("Device", Subject->Message.Document);
    }
    if (!Changes.empty())
    {
        json.Array("Changes", Changes, [](const auto& each) { return each.ToJson(); });
    }
    if (Contradiction)
    {
        json.Raw("Conflict", JsonOf(*Contradiction));
    }
    if (Report)
    {
        json.Raw("Search", Report->ToJson());
    }
    if (Outcome)
    {
        json.Number("Id", Outcome->Id).Raw("Change", Outcome->ToJson());
        if (const std::optional<ChangeRequest> undo = Outcome->Undo())
        {
            json.Raw("Undo", undo->ToJson());
        }
    }
    return json.Take();
}
} // namespace Zent::Discovery::Inventory
