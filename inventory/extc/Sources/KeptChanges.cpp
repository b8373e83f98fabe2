#include "KeptChanges.h"

#include "Inventory/AddressText.h"
#include "Programs/TimeText.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <stdexcept>
#include <utility>

namespace Zent::Discovery::Inventory
{
KeptChanges::KeptChanges(std::string path)
    : file(std::move(path))
{
    file.Read([](const std::string& /*broken*/) {});
}

void KeptChanges::SetUndoes(std::int64_t change, std::string entry)
{
    undoes.insert_or_assign(change, std::move(entry));
}

bool KeptChanges::Begin(std::int64_t change, Session& session)
{
    const ChangeReport* const report = session.ChangeState(change);
    if (report == nullptr || open.contains(change))
    {
        return true;
    }
    JournalEntry entry = JournalEntry::Of(*report, Programs::TimeText::Utc(std::chrono::system_clock::now()));
    const auto undone = undoes.find(change);
    entry.Undoes = undone == undoes.end() ? "" : undone->second;
    try
    {
        file.Append(Journal::BeginLine(entry));
    }
    catch (const std::runtime_error& error)
    {
        session.FailChange(change, error.what());
        return false;
    }
    open.emplace(change, std::move(entry));
    return true;
}

std::string KeptChanges::End(const ChangeReport& outcome)
{
    undoes.erase(outcome.Id);
    const auto kept = open.extract(outcome.Id);
    if (kept.empty())
    {
        return {};
    }
    try
    {
        file.Append(Journal::EndLine(kept.mapped(), outcome.VerdictName()));
    }
    catch (const std::runtime_error&) // the outcome is none the less what it is
    {
    }
    return kept.mapped().Id();
}

std::string KeptChanges::ToJson(std::string_view macAddress) const
{
    using nlohmann::json;
    json broken = json::array();
    const Journal journal = file.Read([&broken](const std::string& text) { broken.push_back(text); });
    return R"({"Entries":)" + journal.ToJson() + R"(,"Newest":)" + journal.NewestToJson(AddressText::MAC(macAddress)) +
           R"(,"Broken":)" + broken.dump(-1, ' ', false, json::error_handler_t::replace) + "}";
}
} // namespace Zent::Discovery::Inventory
