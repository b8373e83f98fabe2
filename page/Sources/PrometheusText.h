#pragma once

#include "Page/PageModel.h"

#include <string>

namespace Zent::Discovery::Page
{
/// Writes metrics in the text form that Prometheus reads. One thread.
class PrometheusText final
{
public:
    static constexpr const char* ContentType = "text/plain; version=0.0.4; charset=utf-8";

    /// Metrics of one name come one after the other.
    void Add(const Metric& metric);

    std::string Take() { return std::move(text); }

private:
    std::string text;
    std::string lastName;
};
} // namespace Zent::Discovery::Page
