#pragma once

#include "Inventory/Session.h"
#include "support/DeviceDocuments.h"

#include <algorithm>
#include <cstdio>
#include <deque>
#include <map>
#include <random>
#include <string>
#include <vector>

/// Devices, a cable, a receive buffer and a host program around a session, in simulated time.
class SimulatedNetwork final
{
public:
    using Time = Zent::Discovery::Inventory::Time;
    using Session = Zent::Discovery::Inventory::Session;
    using Event = Zent::Discovery::Inventory::Event;

    struct Settings
    {
        std::size_t Devices = 1000;
        std::size_t ForeignDevices = 0; // more of them, with addresses of another network
        bool IsRouted = false;          // there is a route to it, and they hear no broadcasts
        double Spread = 0;              // milliseconds over which the answers to a question are spread
        double Loss = 0;                // share of answers that get lost on their way
        bool IsFast = true;             // the receiver takes answers as fast as they come
        bool HasCounter = true;         // the system tells how many answers did not fit into the receive buffer
        bool AreOrdered = false;        // answers come in the same order every time, so that the same ones get lost
        unsigned Seed = 1;
        std::size_t BufferSize = 92;
    };

    explicit SimulatedNetwork(Settings settings)
        : settings(settings)
        , random(settings.Seed)
    {
        for (std::size_t i = 0; i < settings.Devices + settings.ForeignDevices; ++i)
        {
            const bool isForeign = i >= settings.Devices;
            const auto number = static_cast<unsigned>(i);
            Add(isForeign ? 0xC0A80001u + number : 0x0A000102u + number, number); // 192.168.0.1, 10.0.1.2
        }
    }

    /// This machine is 10.0.0.1 in a /21.
    static Zent::Discovery::Inventory::SearchOptions Options()
    {
        Zent::Discovery::Inventory::SearchOptions options;
        options.Networks = {Zent::Discovery::Inventory::Network::Parse("10.0.0.1/21")};
        return options;
    }

    /// Runs the host program until isOver(), for so long at most. False when that time has passed.
    template <class TIsOver>
    bool Run(Session& session, Time time, TIsOver&& isOver)
    {
        const Time end = now + time;
        while (now < end)
        {
            for (int i = 0; i < 200; ++i) // in 20 ms
            {
                Receive(static_cast<double>(now.count()) + i / 10.0);
            }
            now += Time{20};
            for (const std::string* document : received)
            {
                session.Feed({Zent::Discovery::Inventory::DeviceMessage::MessageKind::Signature, *document}, now);
            }
            received.clear();
            session.Advance(now);
            while (const auto wish = session.NextWish())
            {
                CarryOut(session, *wish);
            }
            while (std::optional<Event> event = session.NextEvent())
            {
                Events.push_back(std::move(*event));
            }
            if (isOver())
            {
                return true;
            }
        }
        return false;
    }

    void Run(Session& session, Time time)
    {
        Run(session, time, [] { return false; });
    }

    std::size_t CountOf(Event::EventKind kind) const
    {
        return static_cast<std::size_t>(std::ranges::count(Events, kind, &Event::Kind));
    }

    std::vector<Event> Events;
    std::size_t Restarts = 0;       // questions to addresses without a route
    std::size_t MostUnanswered = 0; // questions by IP within three seconds to addresses that nobody has
    std::size_t Broadcasts = 0;
    std::size_t QuestionsByIP = 0;
    std::size_t QuestionsByMAC = 0;
    bool AreSilent = false; // the devices
    Time now{0};

private:
    struct Device
    {
        std::string Document;
        double Place; // in the spread
    };

    using WishKind = Zent::Discovery::Inventory::Wish::WishKind;

    void Add(unsigned address, unsigned number)
    {
        char mac[24];
        std::snprintf(mac, sizeof(mac), "02:00:00:00:%02X:%02X", number >> 8 & 255, number & 255);
        const std::string ip = Zent::Discovery::Inventory::Network::TextOf(address);
        byIP.emplace(ip, devices.size());
        byMAC.emplace(mac, devices.size());
        devices.push_back({DeviceDocuments::Document("device-" + std::to_string(number), mac, ip), Uniform()});
    }

    double Uniform() { return std::uniform_real_distribution<double>(0, 1)(random); }

    void CarryOut(Session& session, const Zent::Discovery::Inventory::Wish& wish)
    {
        const bool isReachable = settings.IsRouted || wish.Address.starts_with("10.0.");
        switch (wish.Kind)
        {
        case WishKind::AskAll:
            ++Broadcasts;
            AskAll();
            break;
        case WishKind::AskMAC:
            ++QuestionsByMAC;
            Answer(byMAC, wish.Address);
            break;
        case WishKind::AskIP:
            ++QuestionsByIP;
            Restarts += isReachable ? 0u : 1u;
            NoteUnanswered(byIP.contains(wish.Address));
            Answer(byIP, wish.Address);
            break;
        case WishKind::IsReachable:
            session.Answer(wish.Id, isReachable ? 1 : 0);
            break;
        case WishKind::CountLost:
            session.Answer(wish.Id, settings.HasCounter ? static_cast<std::int64_t>(dropped) : -1);
            break;
        default:
            break; // nothing is changed here
        }
    }

    void AskAll()
    {
        std::vector<std::size_t> order(settings.IsRouted ? settings.Devices : devices.size());
        for (std::size_t i = 0; i < order.size(); ++i)
        {
            order[i] = i;
        }
        if (!settings.AreOrdered)
        {
            std::ranges::shuffle(order, random);
        }
        double wire = 0.2; // milliseconds; an answer occupies a 1 Gbit/s cable for 9 microseconds
        for (const std::size_t index : order)
        {
            wire += 0.009;
            Send(index, wire + devices[index].Place * settings.Spread);
        }
    }

    void Answer(const std::map<std::string, std::size_t>& known, const std::string& address)
    {
        const auto found = known.find(address);
        if (found != known.end())
        {
            Send(found->second, 0.2 + devices[found->second].Place * settings.Spread);
        }
    }

    void Send(std::size_t index, double delay)
    {
        if (!AreSilent && Uniform() >= settings.Loss)
        {
            onTheWay.emplace(static_cast<double>(now.count()) + delay, index);
        }
    }

    /// What comes until that time goes into the buffer, and the receiver takes what it can.
    void Receive(double time)
    {
        while (!onTheWay.empty() && onTheWay.begin()->first <= time)
        {
            if (buffer.size() < settings.BufferSize)
            {
                buffer.push_back(onTheWay.begin()->second);
            }
            else
            {
                ++dropped;
            }
            onTheWay.erase(onTheWay.begin());
        }
        if (time >= nextTurn)
        {
            isReceiving = settings.IsFast || !isReceiving;
            nextTurn = time + 1 + 2 * Uniform(); // a time slice
        }
        for (int i = 0; i < (isReceiving ? 14 : 0) && !buffer.empty(); ++i)
        {
            received.push_back(&devices[buffer.front()].Document);
            buffer.pop_front();
        }
    }

    void NoteUnanswered(bool isAnybody)
    {
        if (!isAnybody)
        {
            unanswered.push_back(now);
        }
        while (!unanswered.empty() && unanswered.front() + Time{3000} <= now)
        {
            unanswered.pop_front();
        }
        MostUnanswered = std::max(MostUnanswered, unanswered.size());
    }

    const Settings settings;
    std::mt19937 random;
    std::vector<Device> devices;
    std::map<std::string, std::size_t> byIP;
    std::map<std::string, std::size_t> byMAC;
    std::multimap<double, std::size_t> onTheWay;
    std::deque<std::size_t> buffer;
    std::vector<const std::string*> received;
    std::deque<Time> unanswered;
    std::size_t dropped = 17; // since the system started
    bool isReceiving = true;
    double nextTurn = 0;
};
