#include "Broker/BrokerConnection.h"

#include "BrokerClient.h"

#include <algorithm>
#include <random>
#include <stdexcept>
#include <utility>

using Zent::Discovery::Programs::Lock;

namespace Zent::Discovery::Broker
{
namespace
{
/// Long enough for 10,000 clients: a broker takes some thousand in a second, and what the system cannot queue for it
/// meanwhile comes back ever more rarely, up to half a minute later.
constexpr std::chrono::milliseconds FirstRetry{5000};

/// How long a broker may take to accept a connection.
constexpr std::chrono::seconds AcceptTime{20};

/// How long a broker that takes nothing more may hold up the goodbye.
constexpr std::chrono::seconds GoodbyeTime{3};

/// Anything up to twice the time of the attempt before: thousands of clients of a broker that was started anew must not
/// come at once.
std::chrono::milliseconds RetryTime(unsigned failures, std::chrono::milliseconds longest)
{
    static thread_local std::mt19937 random{std::random_device{}()};
    const auto limit = std::min(longest, FirstRetry * (1U << std::min(failures, 10U)));
    return std::chrono::milliseconds(
        std::uniform_int_distribution<std::chrono::milliseconds::rep>(limit.count() / 10, limit.count())(random));
}
} // namespace

BrokerConnection::BrokerConnection(BrokerSettings settings, std::function<void()> onNews)
    : settings(std::move(settings))
    , onNews(std::move(onNews))
{
    const Client check(this->settings, [](const BrokerNews& /*none*/) {}); // what is wrong with the settings shows now
    thread = std::thread([this] { Run(); });
}

BrokerConnection::~BrokerConnection()
{
    End(false);
}

void BrokerConnection::Close()
{
    End(true);
}

std::optional<int> BrokerConnection::Publish(const Publication& publication)
{
    const Lock guard(clientLock);
    return client != nullptr && client->IsAccepted() ? client->Publish(publication) : std::nullopt;
}

std::optional<int> BrokerConnection::Subscribe(const std::string& filter)
{
    const Lock guard(clientLock);
    return client != nullptr && client->IsAccepted() ? client->Subscribe(filter) : std::nullopt;
}

std::optional<int> BrokerConnection::Follow(const std::string& filter)
{
    const Lock guard(clientLock);
    return client != nullptr && client->IsAccepted() ? client->Follow(filter) : std::nullopt;
}

std::optional<int> BrokerConnection::Search(const std::string& filter, const std::string& endMark)
{
    const Lock guard(clientLock);
    return client != nullptr && client->IsAccepted() ? client->Search(filter, endMark) : std::nullopt;
}

void BrokerConnection::Unsubscribe(const std::string& filter)
{
    const Lock guard(clientLock);
    if (client != nullptr)
    {
        client->Unsubscribe(filter);
    }
}

std::deque<BrokerNews> BrokerConnection::Take()
{
    const Lock guard(lock);
    waitingBytes = 0;
    return std::exchange(news, {});
}

std::size_t BrokerConnection::Lost() const
{
    const Lock guard(lock);
    return lost;
}

void BrokerConnection::Run()
{
    for (unsigned failures = 0;; ++failures)
    {
        std::string reason;
        try
        {
            const auto attempt = std::make_shared<Client>(settings, [this](BrokerNews each) { Tell(std::move(each)); });
            reason = attempt->Connect();
            reason = reason.empty() ? Serve(attempt) : reason;
            failures = attempt->IsAccepted() ? 0 : failures;
            if (!attempt->IsAccepted())
            {
                reason += " (" + settings.Host + ", port " + std::to_string(settings.Port) + ')';
            }
        }
        catch (const std::runtime_error& error) // files for TLS that were there at the start
        {
            reason = error.what();
        }
        Tell({BrokerNews::NewsKind::Disconnected, 0, std::move(reason)});
        if (!WaitToRetry(failures))
        {
            return;
        }
    }
}

/// Lets the connection be used until it ends; the reason.
std::string BrokerConnection::Serve(const std::shared_ptr<Client>& connection)
{
    {
        const Lock guard(clientLock);
        client = connection;
    }
    if (IsEndingWithGoodbye()) // since before there was a client to say it
    {
        connection->SayGoodbye();
    }
    std::string reason = LoopOver(*connection);
    const Lock guard(clientLock);
    client.reset();
    return reason;
}

std::string BrokerConnection::LoopOver(Client& connection)
{
    const auto deadline = std::chrono::steady_clock::now() + AcceptTime;
    for (;;)
    {
        if (std::string reason = connection.Loop(); !reason.empty())
        {
            return reason;
        }
        if (!connection.IsAccepted() && std::chrono::steady_clock::now() > deadline)
        {
            return "the broker does not accept the connection";
        }
        const Lock guard(lock);
        if (isEnding && std::chrono::steady_clock::now() >= endsBy)
        {
            return "the connection was broken off";
        }
    }
}

bool BrokerConnection::IsEndingWithGoodbye() const
{
    const Lock guard(lock);
    return isEnding && saysGoodbye;
}

/// False when the connection is to end.
bool BrokerConnection::WaitToRetry(unsigned failures)
{
    const auto end = std::chrono::steady_clock::now() + RetryTime(failures, settings.LongestRetry);
    const Lock guard(lock);
    while (!isEnding && changed.wait_until(lock, end) == std::cv_status::no_timeout)
    {
    }
    return !isEnding;
}

void BrokerConnection::Tell(BrokerNews each)
{
    {
        const Lock guard(lock);
        const std::size_t bytes = each.Message.Topic.size() + each.Message.Payload.size();
        if (each.Kind == BrokerNews::NewsKind::Received && waitingBytes + bytes > MaximumWaitingBytes)
        {
            ++lost;
            return;
        }
        waitingBytes += bytes;
        news.push_back(std::move(each));
        if (news.size() > 1)
        {
            return; // it was told already that there is something to take
        }
    }
    onNews();
}

void BrokerConnection::End(bool goodbye)
{
    {
        const Lock guard(lock);
        isEnding = true;
        saysGoodbye = goodbye;
        endsBy = std::chrono::steady_clock::now() + (goodbye ? GoodbyeTime : std::chrono::seconds(0));
        changed.notify_all();
    }
    {
        const Lock guard(clientLock);
        if (client != nullptr && goodbye)
        {
            client->SayGoodbye();
        }
    }
    if (thread.joinable())
    {
        thread.join();
    }
}
} // namespace Zent::Discovery::Broker
