#include "SiteAgent.h"

#include "NullPublisher.h"
#include "PagePublisher.h"
#include "Programs/RandomName.h"
#include "Programs/UdpSockets.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <unistd.h>
#include <utility>

using Zent::Discovery::Broker::BrokerConnection;
using Zent::Discovery::Fleet::SiteState;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Inventory::DeviceTableOptions;
using Zent::Discovery::Inventory::Event;
using Zent::Discovery::Inventory::Time;
using Zent::Discovery::Programs::HostSession;
using Zent::Discovery::Programs::MessageQueue;
using Zent::Discovery::Programs::RandomName;
using Zent::Discovery::Programs::UdpSocket;
using Zent::Discovery::Programs::UdpSockets;

namespace Zent::Discovery::Agent
{
namespace
{
constexpr std::uint16_t ServerPort = 12001;

/// How often to look for other programs on the port, for records whose time is over, and whether the page's address can
/// be had.
constexpr Time LookInterval{5000};

std::string MachineName()
{
    std::array<char, 256> name{};
    gethostname(name.data(), name.size() - 1);
    return name.data();
}

HostSession::Handlers HandlersFor(MessageQueue& messages, Log& log)
{
    const auto queue = [&messages](DeviceMessage::MessageKind kind) {
        return [&messages, kind](const std::string& document) {
            messages.Push({kind, document, std::chrono::system_clock::now()});
        };
    };
    return {[&log](const std::string& text) { log.Warning(text); }, queue(DeviceMessage::MessageKind::Signature),
            queue(DeviceMessage::MessageKind::Hello), queue(DeviceMessage::MessageKind::Bye)};
}

DeviceTableOptions OptionsOfTable(const Settings& settings)
{
    DeviceTableOptions options;
    options.AskEvery = settings.AskEvery;
    options.StaleAfter = options.AskEvery * 3 / 2;
    options.AcceptedConflicts = settings.AcceptedConflicts;
    return options;
}

/// The program that receives what devices send, too; empty when there is none.
std::string PortHolder(const std::vector<UdpSocket>& sockets)
{
    for (const UdpSocket& each : sockets)
    {
        if (!each.IsOwn)
        {
            return !each.Program.empty() ? each.Program
                   : each.User           ? "a program of user " + std::to_string(*each.User)
                                         : "another program";
        }
    }
    return "";
}
} // namespace

SiteAgent::SiteAgent(const Settings& settings, MessageQueue& messages, Log& log)
    : settings(settings)
    , messages(messages)
    , log(log)
    , topics(settings.Site)
    , self{SiteState::StateKind::Ready, RandomName::Make(), MachineName(), std::chrono::system_clock::now()}
    , page(MakePage())
    , host(SessionSettings(), HandlersFor(messages, log))
    , driver(
          host,
          messages,
          OptionsOfTable(settings),
          [&log](const std::string& text) { log.Warning(text); },
          [this](const DeviceMessage& message) { figures.Count(message); })
    , publisher(MakePublisher())
    , inventory(settings.Site, self.Agent, driver.Session(), *publisher, log)
{
    if (settings.TakesCommands)
    {
        audit.emplace(settings.StateFolder, log);
        desk.emplace(topics, inventory, driver, *publisher, *audit);
    }
}

SiteAgent::~SiteAgent() = default;

HostSession::Settings SiteAgent::SessionSettings()
{
    HostSession::Settings session = settings.Session;
    if (session.LogFile.empty())
    {
        session.LogFile = libraryLog.emplace().Path();
        session.LogLevel = DiscoveryLogCritical;
    }
    return session;
}

std::unique_ptr<Page::PageServer> SiteAgent::MakePage() const
{
    if (!settings.HasPage())
    {
        return nullptr;
    }
    return std::make_unique<Page::PageServer>(settings.Page);
}

std::unique_ptr<ISitePublisher> SiteAgent::MakePublisher()
{
    std::unique_ptr<ISitePublisher> world = MakeBrokerPublisher();
    if (!page)
    {
        return world;
    }
    return std::make_unique<PagePublisher>(settings.Site, *page, std::move(world));
}

std::unique_ptr<ISitePublisher> SiteAgent::MakeBrokerPublisher()
{
    if (!settings.HasBroker)
    {
        return std::make_unique<NullPublisher>();
    }
    Broker::BrokerSettings broker = settings.Broker;
    broker.ClientId = "discovery-agent-" + settings.Site + "-" + self.Agent;
    broker.Will = BrokerPublisher::Will(topics, self);
    connection = std::make_unique<BrokerConnection>(std::move(broker), [this] { messages.Wake(); });
    ISitePublisher::IListener& listener = *this;
    return std::make_unique<BrokerPublisher>(
        topics, self, settings.TakesCommands, *connection, [this] { return connection->Take(); }, listener, log);
}

void SiteAgent::Run()
{
    LookAround(driver.Now());
    manager.TellReady();
    log.Info("site " + settings.Site + ": listening on UDP port " + std::to_string(ServerPort));
    TellInterfaces();
    StartSearch();
    for (bool goesOn = true; goesOn;)
    {
        TakeEvents();
        publisher->Advance(driver.Now());
        const Time now = driver.Now();
        if (now >= nextLook)
        {
            LookAround(now);
        }
        if (now >= nextReport)
        {
            Report(now);
            nextReport = now + manager.ReportInterval();
        }
        const Time next = std::min({nextLook, nextReport, publisher->NextTime(now)});
        goesOn = driver.Run(std::max(next - now, Time(0)));
    }
    manager.TellStopping();
    publisher->Close();
    if (connection)
    {
        connection->Close();
    }
    host.Close();
}

void SiteAgent::TakeCommand(const Fleet::CommandMessage& message)
{
    if (desk)
    {
        desk->Take(message, std::chrono::system_clock::now());
    }
}

void SiteAgent::TakeUnclaimed(const std::string& id, const std::optional<Fleet::DeviceRecord>& record)
{
    inventory.TakeUnclaimed(id, record, isSearched, std::chrono::system_clock::now());
}

/// The table is whole when the search is over. One beside which another program took answers says nothing of those who
/// were silent.
void SiteAgent::StartSearch()
{
    Inventory::SearchOptions options;
    options.Sweep = settings.Sweeps;
    options.Networks = host.Interfaces().Addresses();
    driver.Session().StartSearch(options, driver.Now());
}

void SiteAgent::TakeEvents()
{
    while (const std::optional<Event> event = driver.Session().NextEvent())
    {
        // The end of a search that has made way for another one is not the end.
        if (event->Kind == Event::EventKind::SearchEnded && driver.Session().SearchState()->IsOver)
        {
            log.Info(event->Report->ToString());
            isSearched = portHolder.empty() && !isOffline;
            if (isSearched)
            {
                inventory.CallSilentGone(std::chrono::system_clock::now());
            }
            publisher->BeReady();
        }
        TakeNetwork(*event);
        inventory.Take(*event, std::chrono::system_clock::now());
        if (event->Outcome && desk)
        {
            desk->TakeOutcome(*event->Outcome, std::chrono::system_clock::now());
        }
    }
}

/// A search during which no interface took part says nothing of those who were silent, either.
void SiteAgent::TakeNetwork(const Event& event)
{
    if (event.Kind == Event::EventKind::Offline)
    {
        isOffline = true;
        log.Warning("no network interface takes part; left out: " + host.Interfaces().LeftOut() +
                    "; no device is called gone");
    }
    else if (event.Kind == Event::EventKind::Online)
    {
        isOffline = false;
        log.Info("a network interface takes part again");
        if (!isSearched)
        {
            StartSearch();
        }
    }
}

void SiteAgent::LookAround(Time now)
{
    nextLook = now + LookInterval;
    const std::vector<UdpSocket> sockets = UdpSockets::OnPort(ServerPort);
    figures.SetSockets(sockets);
    const std::string holder = PortHolder(sockets);
    if (holder != portHolder)
    {
        log.Warning(holder.empty() ? "the port is this agent's alone again"
                                   : holder + " receives what devices send, too: no device is called gone");
        portHolder = holder;
        if (holder.empty() && !isSearched)
        {
            StartSearch();
        }
    }
    driver.Session().SetPortHeld(!holder.empty(), now);
    if (const unsigned changes = host.InterfaceChanges(); changes != knownChanges && driver.AskAll())
    {
        knownChanges = changes;
        log.Info("network interfaces have changed");
        TellInterfaces();
    }
    if (const std::size_t lost = connection ? connection->Lost() : 0; lost != knownLost)
    {
        log.Warning(std::to_string(lost - knownLost) +
                    " messages of the broker lost: they come faster than they are taken");
        knownLost = lost;
    }
    if (page && !page->IsListening())
    {
        ServePage();
    }
    inventory.RemoveOverdue(std::chrono::system_clock::now());
}

void SiteAgent::TellInterfaces()
{
    std::string addresses;
    for (const std::string& each : host.Interfaces().AddressTexts())
    {
        addresses += (addresses.empty() ? "" : ", ") + each;
    }
    if (!addresses.empty())
    {
        log.Info("devices are asked from " + addresses);
    }
}

/// Any user of the machine can take the page's port; the site is watched over all the same.
void SiteAgent::ServePage()
{
    std::string problem;
    try
    {
        page->Listen();
        log.Info("the page is served on " + page->Url());
    }
    catch (const std::runtime_error& error)
    {
        problem = error.what();
        if (problem != pageProblem)
        {
            log.Error(problem + "; goes on without the page, and tries again every " +
                      std::to_string(LookInterval / std::chrono::seconds(1)) + " s");
        }
    }
    pageProblem = problem;
}

void SiteAgent::Report(Time now)
{
    manager.TellStatus(StatusText());
    manager.FeedWatchdog();
    figures.Library = libraryLog ? std::optional(libraryLog->Read()) : std::nullopt;
    if (!page)
    {
        return;
    }
    figures.LostMessages = messages.Lost();
    figures.UnreadableMessages = driver.Unreadable();
    figures.LostByBroker = knownLost;
    figures.LastRound = driver.LastRound();
    const ISitePublisher::PublisherStatus world = publisher->Status();
    page->Update([&](Page::PageModel& model) {
        model.SetSite(settings.Site, self.KindName(), world.Text + NetworkText());
        model.SetMetrics(figures.Metrics(connection ? std::optional(world) : std::nullopt, now));
        model.SetHealth(figures.IsPortBound ? "" : "UDP port " + std::to_string(ServerPort) + " is not bound",
                        std::chrono::steady_clock::now());
    });
}

/// What is wrong with port and interfaces.
std::string SiteAgent::NetworkText() const
{
    return (portHolder.empty() ? "" : "; port shared with " + portHolder) +
           (isOffline ? "; no network interface takes part" : "");
}

std::string SiteAgent::StatusText() const
{
    const SiteInventory::Counts counts = inventory.Count();
    return "site " + settings.Site + ": " + std::to_string(counts.Devices) + " devices, " +
           std::to_string(counts.Away) + " of them gone; " + publisher->Status().Text + NetworkText() + PageText();
}

std::string SiteAgent::PageText() const
{
    return !page ? "" : page->IsListening() ? "; page on " + page->Url() : "; " + pageProblem;
}
} // namespace Zent::Discovery::Agent
