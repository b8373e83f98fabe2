#include "Inventory/DeviceRow.h"

#include "JsonText.h"

namespace Zent::Discovery::Inventory
{
DeviceRow::RowState DeviceRow::State() const
{
    return IsFlapping ? RowState::Flapping : Condition;
}

const char* DeviceRow::StateName() const
{
    static constexpr const char* Names[] = {"present", "stale", "asked", "gone", "left", "flapping"};
    return Names[static_cast<std::size_t>(State())];
}

bool DeviceRow::IsHere() const
{
    return Condition != RowState::Gone && Condition != RowState::Left;
}

std::string DeviceRow::ToJson() const
{
    const auto changeJson = [](const Change& change) {
        return R"({"When":)" + std::to_string(change.When.count()) + "," + change.What.ToJson().substr(1);
    };
    return JsonText()
        .Text("State", StateName())
        .Flag("Here", IsHere())
        .Number("FirstSeen", FirstSeen.count())
        .Number("LastSeen", LastSeen.count())
        .Text("Source", Source)
        .Array("Changes", Changes, changeJson)
        .Raw("Device", Latest->Message.Document)
        .Take();
}
} // namespace Zent::Discovery::Inventory
