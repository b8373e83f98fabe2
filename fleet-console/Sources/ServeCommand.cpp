#include "ServeCommand.h"

#include "Broker/BrokerConnection.h"
#include "BrokerDialogue.h"
#include "Commands/Arguments.h"
#include "Fleet/FleetReading.h"
#include "FleetPage.h"
#include "Page/PageServer.h"
#include "Show/Output.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

using Zent::Discovery::Broker::BrokerConnection;
using Zent::Discovery::Broker::BrokerNews;
using Zent::Discovery::Fleet::Conversation;
using Zent::Discovery::Fleet::FleetReading;
using Zent::Discovery::Fleet::SiteReading;
using Zent::Discovery::Page::PageServer;
using Zent::Discovery::Page::PageSettings;

namespace Zent::Discovery::FleetConsole
{
namespace
{
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds ReportInterval{1};

/// The page at work.
class Service final
{
public:
    Service(CommandContext& context, const PageSettings& settings)
        : context(context)
        , page(settings)
        , shown(page, context.Out)
        , reading(context.Sites, SiteReading::ReadingScope::Events, shown)
        , connection(context.Broker, [&context] { context.Waiter.Wake(); })
    {
    }

    void Run()
    {
        page.Listen();
        if (context.Out.IsJson())
        {
            context.Out.PrintLine(R"({"Page":")" + page.Url() + "\"}");
            context.Out.Finish(); // now: who asked for any free port waits for it
        }
        context.Out.Conclude("the page is served on " + page.Url());
        while (!context.Waiter.IsInterrupted())
        {
            for (const BrokerNews& each : connection.Take())
            {
                Take(each);
            }
            if (state.IsConnected)
            {
                Ask();
            }
            if (Clock::now() >= nextReport)
            {
                Report();
            }
            const auto next =
                state.IsConnected ? std::min(reading.NextTime(), Now() + ReportInterval) : Now() + ReportInterval;
            context.Waiter.Take(std::min(nextReport, start + next));
        }
        connection.Close();
    }

private:
    FleetReading::Time Now() const { return std::chrono::duration_cast<FleetReading::Time>(Clock::now() - start); }

    void Take(const BrokerNews& news)
    {
        switch (news.Kind)
        {
        case BrokerNews::NewsKind::Connected:
            state.IsConnected = true;
            hasRefused = false;
            nextReport = Clock::now();
            break;
        case BrokerNews::NewsKind::Disconnected:
            state.IsConnected = false;
            state.Trouble = news.Text;
            reading.Disconnect();
            nextReport = Clock::now();
            break;
        case BrokerNews::NewsKind::Refused:
            if (!std::exchange(hasRefused, true))
            {
                context.Out.Complain("the broker refuses: " + news.Text);
            }
            break;
        case BrokerNews::NewsKind::Received:
            reading.Take(news.Message.Topic, news.Message.Payload, news.Message.IsRetained, Now());
            break;
        case BrokerNews::NewsKind::Delivered:
        case BrokerNews::NewsKind::Subscribed:
            break;
        }
    }

    void Ask()
    {
        for (Conversation::Step& each : reading.Advance(Now()))
        {
            BrokerDialogue::Do(connection, std::move(each));
        }
    }

    void Report()
    {
        nextReport = Clock::now() + ReportInterval;
        if (const std::size_t lost = connection.Lost(); lost != state.Lost)
        {
            context.Out.Complain(std::to_string(lost - state.Lost) +
                                 " messages of the broker lost: they come faster than they are taken");
            state.Lost = lost;
            reading.Doubt();
        }
        shown.Report(reading, state);
    }

    CommandContext& context;
    PageServer page;
    FleetPage shown;
    FleetReading reading;
    FleetPage::ConnectionState state;
    bool hasRefused = false; // on this connection
    const Clock::time_point start = Clock::now();
    Clock::time_point nextReport = start + ReportInterval;
    BrokerConnection connection;
};
} // namespace

CLI::App& ServeCommand::AddTo(CLI::App& program)
{
    const Console::Arguments arguments(program, "serve", "show all sites on a page for browsers, until interrupted");
    page.AddTo(arguments.Command());
    return arguments.Command();
}

ExitStatus ServeCommand::Run(CommandContext& context)
{
    Service(context, page.Settings()).Run();
    return ExitStatus::Success;
}
} // namespace Zent::Discovery::FleetConsole
