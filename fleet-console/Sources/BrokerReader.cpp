#include "BrokerReader.h"

#include "Broker/BrokerConnection.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

using Zent::Discovery::Broker::BrokerConnection;
using Zent::Discovery::Broker::BrokerNews;
using Zent::Discovery::Broker::BrokerSettings;
using Zent::Discovery::Fleet::FleetReading;
using Zent::Discovery::Fleet::ReadingRequest;
using Zent::Discovery::Programs::MessageQueue;

namespace Zent::Discovery::FleetConsole
{
namespace
{
using Clock = std::chrono::steady_clock;

/// How long the program sleeps at most while it connects.
constexpr std::chrono::hours LongestWait{1};

class Session final
{
public:
    Session(const BrokerSettings& settings, MessageQueue& waiter, FleetReading& reading)
        : waiter(waiter)
        , reading(reading)
        , connection(settings, [&waiter] { waiter.Wake(); })
    {
    }

    void Run()
    {
        while (!reading.IsOver() && !waiter.IsInterrupted())
        {
            for (const BrokerNews& each : connection.Take())
            {
                Take(each);
            }
            if (isConnected)
            {
                Ask();
            }
            if (!reading.IsOver())
            {
                waiter.Take(Clock::now() + (isConnected ? reading.NextTime() - Now() : LongestWait));
            }
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
            isConnected = true;
            break;
        case BrokerNews::NewsKind::Disconnected:
            throw std::runtime_error("no connection to the broker: " + news.Text);
        case BrokerNews::NewsKind::Refused:
            throw std::runtime_error("the broker refuses: " + news.Text);
        case BrokerNews::NewsKind::Received:
            reading.Take(news.Message.Topic, news.Message.Payload, news.Message.IsRetained, Now());
            break;
        default:
            break;
        }
    }

    void Ask()
    {
        for (const ReadingRequest& each : reading.Advance(Now()))
        {
            if (each.IsEnd)
            {
                connection.Unsubscribe(each.Filter);
            }
            else
            {
                connection.Subscribe(each.Filter);
            }
        }
    }

    MessageQueue& waiter;
    FleetReading& reading;
    const Clock::time_point start = Clock::now();
    bool isConnected = false;
    BrokerConnection connection;
};
} // namespace

void BrokerReader::Read(const BrokerSettings& settings, MessageQueue& waiter, FleetReading& reading)
{
    Session(settings, waiter, reading).Run();
}
} // namespace Zent::Discovery::FleetConsole
