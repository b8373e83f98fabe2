#include "endtoend/Report.h"

#include <array>
#include <cstdarg>
#include <cstdio>

namespace Benchmarks
{
namespace
{
std::size_t IndexOf(Level level)
{
    return level == Level::None ? 0 : 1;
}

[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...)
{
    std::array<char, 256> line{};
    va_list values;
    va_start(values, format);
    std::vsnprintf(line.data(), line.size(), format, values);
    va_end(values);
    return line.data();
}

std::string Number(double value)
{
    return Format("%.*f", value >= 100 ? 0 : (value >= 10 ? 1 : 3), value);
}

const std::vector<double>& Of(const Values& values, const Figure& figure)
{
    static const std::vector<double> none;
    const auto found = values.find(figure.Name);
    return found == values.end() ? none : found->second;
}

/// The median of the rounds' ratios: both contenders of a round met the same machine.
double Ratio(const std::vector<double>& library, const std::vector<double>& limit)
{
    std::vector<double> ratios;
    for (std::size_t round = 0; round < library.size() && round < limit.size(); ++round)
    {
        if (limit[round] > 0)
        {
            ratios.push_back(library[round] / limit[round]);
        }
    }
    return Median(ratios);
}

/// The goal and whether it is met; two blank columns for a figure without one.
std::string Judgement(const Figure& figure, Level level, double value)
{
    if (figure.Kind == Figure::Goal::None)
    {
        return Format("%-9s | %-6s", "", "");
    }
    const bool atLeast = figure.Kind == Figure::Goal::RatioAtLeast || figure.Kind == Figure::Goal::AtLeast;
    return Format("%s %-6s | %-6s", atLeast ? ">=" : "<=", Format("%g", figure.GoalAt(level)).c_str(),
                  figure.IsMet(value, level) ? "met" : "missed");
}

std::string JsonOf(const Values& values)
{
    std::string text = "{";
    for (const auto& [name, rounds] : values)
    {
        text += (text.size() > 1 ? ", \"" : "\"") + name + "\": [";
        for (std::size_t round = 0; round < rounds.size(); ++round)
        {
            text += Format("%s%.6g", round == 0 ? "" : ", ", rounds[round]);
        }
        text += "]";
    }
    return text + "}";
}

std::string JsonOf(const Growth::Points& points)
{
    std::string text = "[";
    for (const auto& [x, y] : points)
    {
        text += Format("%s[%.6g, %.9g]", text.size() > 1 ? ", " : "", x, y);
    }
    return text + "]";
}
} // namespace

std::string Report::Table(Level level, const Scale& scale) const
{
    const std::size_t index = IndexOf(level);
    std::string text =
        Format("Log level %s, medians of %d rounds\n\n", level == Level::None ? "None" : "Standard", scale.Rounds);
    text +=
        "| figure                                      | limit    | library  | unit | ratio | goal     |        |\n";
    text +=
        "|---------------------------------------------|---------:|---------:|------|------:|---------:|--------|\n";
    for (const Figure& figure : Figure::All())
    {
        const std::vector<double>& limit = Of(Limit[index], figure);
        const std::vector<double>& library = Of(Library[index], figure);
        const double ratio = Ratio(library, limit);
        text += Format("| %-43s | %8s | %8s | %-4s | %5s | %s |\n", figure.Title.c_str(),
                       limit.empty() ? "" : Number(Median(limit)).c_str(), Number(Median(library)).c_str(),
                       figure.Unit.c_str(), limit.empty() ? "" : Format("%.2f", ratio).c_str(),
                       Judgement(figure, level, figure.IsRatio() ? ratio : Median(library)).c_str());
    }
    return text + "\n";
}

std::string Report::Json() const
{
    std::string text = "{\n";
    text += "  \"limit\": {\"None\": " + JsonOf(Limit[0]) + ",\n    \"Standard\": " + JsonOf(Limit[1]) + "},\n";
    text += "  \"library\": {\"None\": " + JsonOf(Library[0]) + ",\n    \"Standard\": " + JsonOf(Library[1]) + "},\n";
    text += "  \"growth\": {\"time_by_size\": " + JsonOf(Costs.TimeBySize) +
            ",\n    \"memory_by_tasks\": " + JsonOf(Costs.MemoryByTasks) + "},\n";
    return text + Format("  \"seconds\": %.1f\n}\n", Seconds);
}
} // namespace Benchmarks
