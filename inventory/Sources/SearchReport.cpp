#include "Inventory/SearchReport.h"

#include "JsonText.h"

#include <cmath>

namespace Zent::Discovery::Inventory
{
namespace
{
std::string TextOf(const std::optional<std::uint64_t>& count, const char* unknown)
{
    return count ? std::to_string(*count) : unknown;
}

std::string Counted(std::uint64_t count, const std::string& what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string EstimateText(double estimate)
{
    return estimate < 0.05   ? "0"
           : estimate < 9.95 ? JsonText::OneDecimal(estimate)
                             : std::to_string(std::llround(estimate));
}
} // namespace

const char* SearchReport::Round::AskedName() const
{
    return Asked == Question::All ? "all" : Asked == Question::Sweep ? "sweep" : "list";
}

std::optional<std::uint64_t> SearchReport::LostHere() const
{
    std::uint64_t sum = 0;
    for (const Round& round : Rounds)
    {
        if (!round.Lost)
        {
            return std::nullopt;
        }
        sum += *round.Lost;
    }
    return sum;
}

std::string SearchReport::ToJson() const
{
    std::string text = R"({"Devices":)" + std::to_string(Devices) + R"(,"Rounds":[)";
    for (const Round& round : Rounds)
    {
        text += (&round == &Rounds.front() ? "" : ",") + std::string(R"({"Asked":")") + round.AskedName() +
                R"(","Answers":)" + std::to_string(round.Answers) + R"(,"New":)" + std::to_string(round.New) +
                R"(,"Lost":)" + TextOf(round.Lost, "null") + "}";
    }
    return text + R"(],"LostHere":)" + TextOf(LostHere(), "null") + R"(,"EstimatedUnseen":)" +
           JsonText::OneDecimal(EstimatedUnseen) + R"(,"Complete":)" + (Complete ? "true" : "false") +
           R"(,"Seconds":)" + JsonText::OneDecimal(static_cast<double>(Elapsed.count()) / 1000) + "}";
}

std::string SearchReport::ToString() const
{
    std::string text = Counted(Devices, "device") + ", " + Counted(Rounds.size(), "round");
    for (const Round& round : Rounds)
    {
        text += (&round == &Rounds.front() ? ": " : ", ") + std::to_string(round.New);
    }
    text += Rounds.empty() ? "; " : " new; ";
    const std::optional<std::uint64_t> lost = LostHere();
    text += lost ? Counted(*lost, "answer") + " lost in this machine's receive buffer"
                 : "how many answers this machine lost is unknown";
    return text + "; estimated unseen: " + EstimateText(EstimatedUnseen);
}
} // namespace Zent::Discovery::Inventory
