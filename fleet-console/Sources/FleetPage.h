#pragma once

#include "Fleet/FleetReading.h"
#include "Page/PageServer.h"

#include <cstddef>
#include <map>
#include <string>

namespace Zent::Discovery::Console
{
class Output;
}

namespace Zent::Discovery::FleetConsole
{
/// Shows on a page what a reading finds, and tells whoever runs the program what is missing. One thread.
class FleetPage final : public Fleet::ReadingListener
{
public:
    struct ConnectionState
    {
        bool IsConnected = false;
        std::string Trouble = "it has not answered yet"; // why there is no connection
        std::size_t Lost = 0;                            // messages that came faster than they were taken
    };

    /// Both must outlive the object.
    FleetPage(Page::PageServer& page, Console::Output& output);

    void TakeSite(const Fleet::SiteReading& site) override;
    void TakeForgotten(const std::string& site) override;
    void TakeRecord(const std::string& site, const std::string& id, const Fleet::DeviceRecord& record) override;
    void TakeRemoval(const std::string& site, const std::string& id) override;
    void TakeEvent(const Fleet::SiteEvent& event) override;

    /// Tells how the reading is doing, now and then: what is missing for a moment is nobody's news.
    void Report(const Fleet::FleetReading& reading, const ConnectionState& connection);

private:
    void Complain(const std::string& trouble, const std::string& otherwise);

    Page::PageServer& page;
    Console::Output& output;
    std::map<std::string, std::string> complaints; // the last ones, by what is said when they are over
};
} // namespace Zent::Discovery::FleetConsole
