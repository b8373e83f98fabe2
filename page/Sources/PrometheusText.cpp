#include "PrometheusText.h"

#include <charconv>

namespace Zent::Discovery::Page
{
namespace
{
std::string Escaped(const std::string& value)
{
    std::string text;
    for (const char each : value)
    {
        text += each == '\n' ? "\\n" : each == '"' ? "\\\"" : each == '\\' ? "\\\\" : std::string(1, each);
    }
    return text;
}

/// Whatever the locale is.
std::string NumberText(double value)
{
    char text[32];
    const auto result = std::to_chars(std::begin(text), std::end(text), value);
    return {text, result.ptr};
}
} // namespace

void PrometheusText::Add(const Metric& metric)
{
    if (metric.Name != lastName)
    {
        const char* const kind = metric.Kind == Metric::MetricKind::Counter ? "counter" : "gauge";
        text += "# HELP " + metric.Name + ' ' + metric.Help + "\n# TYPE " + metric.Name + ' ' + kind + '\n';
        lastName = metric.Name;
    }
    text += metric.Name;
    if (metric.Which)
    {
        text += '{' + metric.Which->first + "=\"" + Escaped(metric.Which->second) + "\"}";
    }
    text += ' ' + NumberText(metric.Value) + '\n';
}
} // namespace Zent::Discovery::Page
