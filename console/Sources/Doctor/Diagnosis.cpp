#include "Doctor/Diagnosis.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

namespace Zent::Discovery::Console::Doctor
{
namespace
{
std::string Filled(std::string text, std::string_view detail)
{
    const std::size_t place = text.find("{}");
    return place == std::string::npos ? text : text.replace(place, 2, detail);
}

std::string CommandOf(const Check& check, Observations::Systems system)
{
    return system == Observations::Systems::Windows ? check.WindowsCommand : check.LinuxCommand;
}

Finding Judge(const Check& check, const Observations& observations)
{
    std::optional<Symptom> symptom = check.Probe(observations);
    if (!symptom)
    {
        return {&check};
    }
    Finding finding{&check, symptom->HowBad.value_or(check.HowBad), Filled(check.Sentence, symptom->Detail),
                    std::move(symptom->Commands)};
    const std::string command = CommandOf(check, observations.System);
    if (finding.Commands.empty() && !command.empty())
    {
        finding.Commands.push_back(command);
    }
    return finding;
}
} // namespace

std::vector<Finding> Diagnosis::Of(const Observations& observations, std::span<const std::string> codes)
{
    std::vector<Finding> findings;
    std::set<std::string_view> hiding; // codes
    std::set<std::string_view> wanted(codes.begin(), codes.end());
    for (const Check& check : Check::All())
    {
        const auto cause =
            std::ranges::find_if(check.DependsOn, [&hiding](std::string_view code) { return hiding.contains(code); });
        if (cause != check.DependsOn.end())
        {
            if (wanted.contains(check.Code))
            {
                wanted.insert(*cause);
            }
        }
        else if (!check.NeedsSearch || observations.Search)
        {
            findings.push_back(Judge(check, observations));
            if (findings.back().HowBad >= Severity::Warning)
            {
                hiding.insert(check.Code);
            }
        }
    }
    if (!codes.empty())
    {
        std::erase_if(findings, [&wanted](const Finding& finding) { return !wanted.contains(finding.Of->Code); });
    }
    return findings;
}

Severity Diagnosis::WorstOf(std::span<const Finding> findings)
{
    const auto worst = std::ranges::max_element(findings, {}, &Finding::HowBad);
    return worst == findings.end() ? Severity::Ok : worst->HowBad;
}
} // namespace Zent::Discovery::Console::Doctor
