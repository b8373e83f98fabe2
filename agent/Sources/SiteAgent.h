#pragma once

#include "AgentFigures.h"
#include "AuditLog.h"
#include "Broker/BrokerConnection.h"
#include "BrokerPublisher.h"
#include "CommandDesk.h"
#include "LibraryLog.h"
#include "Log.h"
#include "Page/PageServer.h"
#include "Programs/HostSession.h"
#include "Programs/MessageQueue.h"
#include "Programs/SessionDriver.h"
#include "ServiceManager.h"
#include "Settings.h"
#include "SiteInventory.h"

#include <memory>
#include <optional>

namespace Zent::Discovery::Agent
{
/// The agent of a site at work. One thread, on which all but the connection to the broker runs.
class SiteAgent final : private ISitePublisher::IListener
{
public:
    /// All must outlive the object. Starts the library.
    /// @throws std::runtime_error and Programs::WrongArgument as HostSession does, and when files for TLS, for the page
    /// or for the log of commands cannot be used.
    SiteAgent(const Settings& settings, Programs::MessageQueue& messages, Log& log);
    ~SiteAgent() override;

    SiteAgent(const SiteAgent&) = delete;
    SiteAgent& operator=(const SiteAgent&) = delete;

    /// Until the queue of messages is interrupted.
    void Run();

private:
    void TakeCommand(const Fleet::CommandMessage& message) override;
    void TakeUnclaimed(const std::string& id, const std::optional<Fleet::DeviceRecord>& record) override;

    Programs::HostSession::Settings SessionSettings();
    std::unique_ptr<Page::PageServer> MakePage() const;
    std::unique_ptr<ISitePublisher> MakePublisher();
    std::unique_ptr<ISitePublisher> MakeBrokerPublisher();
    void ServePage();
    void StartSearch();
    void TakeEvents();
    void TakeNetwork(const Inventory::Event& event);
    void LookAround(Inventory::Time now);
    void Report(Inventory::Time now);
    void TellInterfaces();
    std::string NetworkText() const;
    std::string PageText() const;
    std::string StatusText() const;

    const Settings& settings;
    Programs::MessageQueue& messages;
    Log& log;
    const Fleet::SiteTopics topics;
    const Fleet::SiteState self;
    ServiceManager manager;
    const std::unique_ptr<Page::PageServer> page; // null without one
    AgentFigures figures;
    std::optional<LibraryLog> libraryLog; // unless the user wants the log elsewhere
    Programs::HostSession host;
    Programs::SessionDriver driver;
    std::unique_ptr<Broker::BrokerConnection> connection; // null without a broker
    const std::unique_ptr<ISitePublisher> publisher;
    SiteInventory inventory;
    std::optional<AuditLog> audit; // only where commands are taken
    std::optional<CommandDesk> desk;
    std::string pageProblem;   // why the page is not served
    std::string portHolder;    // another program on the port, if there is one
    unsigned knownChanges = 0; // of the interfaces
    std::size_t knownLost = 0; // messages of the broker
    Inventory::Time nextLook{0};
    Inventory::Time nextReport{0};
    bool isOffline = false;  // no network interface takes part
    bool isSearched = false; // by a search that heard all answers
};
} // namespace Zent::Discovery::Agent
