#include "Doctor/WindowsRules.h"

#include <algorithm>
#include <string_view>

namespace Zent::Discovery::Console::Doctor
{
namespace
{
/// A rule's values of one name; a name may occur several times.
std::vector<std::string_view> ValuesOf(std::string_view rule, std::string_view name)
{
    std::vector<std::string_view> values;
    while (!rule.empty())
    {
        const std::size_t end = std::min(rule.find('|'), rule.size());
        const std::string_view part = rule.substr(0, end);
        if (part.starts_with(name) && part.substr(name.size()).starts_with('='))
        {
            values.push_back(part.substr(name.size() + 1));
        }
        rule.remove_prefix(std::min(end + 1, rule.size()));
    }
    return values;
}

char Lower(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

/// Paths and words of the registry are alike in either case.
bool IsEqual(std::string_view left, std::string_view right)
{
    return std::ranges::equal(left, right, {}, Lower, Lower);
}

/// Whether the rule speaks of all values, or of that one among others.
bool Covers(std::string_view rule, std::string_view name, std::string_view value)
{
    const std::vector<std::string_view> values = ValuesOf(rule, name);
    return values.empty() ||
           std::ranges::any_of(values, [value](std::string_view each) { return IsEqual(each, value); });
}
} // namespace

FirewallState WindowsRules::Judge(const std::vector<std::string>& rules, const std::string& program)
{
    bool isAllowed = false;
    bool isBlocked = false;
    for (const std::string& rule : rules)
    {
        if (Covers(rule, "Active", "TRUE") && Covers(rule, "Dir", "In") && Covers(rule, "Protocol", "17") &&
            Covers(rule, "LPort", "12001") && Covers(rule, "App", program))
        {
            isAllowed |= Covers(rule, "Action", "Allow");
            isBlocked |= Covers(rule, "Action", "Block");
        }
    }
    if (isAllowed && !isBlocked) // a rule that blocks goes before all that allow
    {
        return {};
    }
    return {FirewallState::Verdicts::Dropped,
            isBlocked ? "by a rule of the Windows firewall"
                      : "by the Windows firewall, which has no rule that lets it in",
            {"netsh advfirewall firewall add rule name=DiscoveryServer dir=in action=allow protocol=UDP "
             "localport=12001"}};
}
} // namespace Zent::Discovery::Console::Doctor
