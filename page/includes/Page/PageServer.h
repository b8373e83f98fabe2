#pragma once

#include "Page/PageModel.h"
#include "Page/PageSettings.h"

#include <functional>
#include <memory>
#include <string>

namespace Zent::Discovery::Page
{
/// Serves a page of the inventory to viewers, all of them on one thread of its own. Any thread.
class PageServer final
{
public:
    /// So many connections at a time; from one address other than this machine's fewer.
    static constexpr unsigned MaximumConnections = 256;
    static constexpr unsigned MaximumConnectionsOfViewer = 32;

    /// So many of them may wait for events.
    static constexpr unsigned MaximumStreams = 200;

    /// Loads what the settings name; serves once Listen has succeeded.
    /// @throws Programs::WrongArgument as PageSettings::Check does, and when a file cannot be used.
    explicit PageServer(const PageSettings& settings);

    /// Ends all connections.
    ~PageServer();

    PageServer(const PageServer&) = delete;
    PageServer& operator=(const PageServer&) = delete;

    /// Serves from now on. Only while it does not; no other thread may use the object meanwhile.
    /// @throws std::runtime_error with the reason when the address cannot be had; it may be tried again.
    void Listen();

    bool IsListening() const;

    /// Changes what viewers see, and lets them know. No viewer is served meanwhile.
    void Update(const std::function<void(PageModel& model)>& change);

    /// For people and browsers of this machine: http://127.0.0.1:12080/. Only while it is listening.
    const std::string& Url() const;

private:
    class Implementation;

    const std::unique_ptr<Implementation> implementation;
};
} // namespace Zent::Discovery::Page
