// A host program in C++ for BindingTest.py.

#include "DiscoveryInventorySession.h"
#include "DiscoverySession.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace
{
using Zent::Discovery::DeviceChange;
using Zent::Discovery::DiscoveryError;
using Zent::Discovery::DiscoveryInventorySession;
using Zent::Discovery::DiscoverySession;
using Arguments = std::vector<std::string>;

class Host final
{
public:
    ~Host()
    {
        for (std::thread* thread : {&closer, &changer})
        {
            if (thread->joinable())
            {
                thread->join();
            }
        }
    }

    void Execute(const std::string& line)
    {
        std::istringstream stream(line);
        Arguments words;
        for (std::string word; std::getline(stream, word, '\t');)
        {
            words.push_back(word);
        }
        words.resize(std::max<std::size_t>(words.size(), 3)); // an empty word at the end
        const std::string command = words.front();
        words.erase(words.begin());
        Say("= " + Outcome([&] { commands.at(command)(words); }));
    }

private:
    void Open(const Arguments& words)
    {
        inventory.reset();
        session.reset();
        session = std::make_unique<DiscoverySession>(words[0], DiscoveryLogDebug);
        address = words[1];
        session->OnSignature([this](const std::string& hostJson) { Handle("signature", hostJson); });
        session->OnHello([this](const std::string& hostJson) { Handle("hello", hostJson); });
        session->OnBye([this](const std::string& hostJson) { Handle("bye", hostJson); });
        session->OnFailure([this](std::exception_ptr failure) {
            Say("reported " + Outcome([&] { std::rethrow_exception(failure); }));
        });
    }

    void Start()
    {
        session->Start();
        session->InitBroadcastProvider({address});
    }

    void OpenInventory(const Arguments& words)
    {
        inventory.reset();
        Zent::Discovery::InventoryOptions inventoryOptions;
        inventoryOptions.AskEvery = std::chrono::milliseconds(std::stoi(words[0]));
        inventoryOptions.Journal = words.size() > 1 ? words[1] : "";
        inventory = std::make_unique<DiscoveryInventorySession>(*session, inventoryOptions);
        inventory->OnAppeared([this](const DeviceChange& change) { Handle("appeared", change.Description.HostName); });
        inventory->OnLeft([this](const DeviceChange& change) { Handle("left", change.Description.HostName); });
        inventory->OnChanged([this](const DeviceChange& change) {
            for (const auto& each : change.Changes)
            {
                Handle("changed", each.Property + " " + each.Before.value_or("-") + " " + each.After.value_or("-"));
            }
        });
        inventory->OnConflict([this](const DeviceChange& change) {
            Handle("conflict", change.Conflict->Kind + " " + change.Conflict->Value + " " +
                                   change.Conflict->First.SerialNumber + " " + change.Conflict->Second.SerialNumber);
        });
        inventory->OnFailure([this](std::exception_ptr failure) {
            Say("reported " + Outcome([&] { std::rethrow_exception(failure); }));
        });
    }

    template <class TStart>
    void Change(const TStart& start)
    {
        constexpr const char* Verdicts[] = {"applied", "rebootneeded", "refused", "noanswer", "notsent"};
        try
        {
            last = start();
        }
        catch (const Zent::Discovery::ChangeFailed& failure)
        {
            last = failure.Outcome();
        }
        const std::string before = last.Before.value_or("{}");
        Say(std::string("outcome ") + Verdicts[static_cast<std::size_t>(last.Verdict)] + " " +
            Zent::Discovery::JsonView(before)["HostName"].Text() + " " + last.Code);
    }

    /// Milliseconds, and addresses to ask one by one.
    void Search(const Arguments& words)
    {
        Zent::Discovery::DiscoverOptions searchOptions;
        if (!words.empty())
        {
            searchOptions.Wait = std::chrono::milliseconds(std::stoi(words[0]));
            searchOptions.Also.assign(words.begin() + 1, words.end() - (words.back().empty() ? 1 : 0));
        }
        try
        {
            Say("found complete" + Listed(inventory->Discover(searchOptions).Devices));
        }
        catch (const Zent::Discovery::IncompleteSearch& error)
        {
            Say("found incomplete" + Listed(error.Result().Devices));
        }
    }

    static std::string Listed(const std::vector<Zent::Discovery::KnownDevice>& devices)
    {
        const char* const states[] = {"present", "stale", "asked", "gone", "left", "flapping"};
        std::string text;
        for (const Zent::Discovery::KnownDevice& device : devices)
        {
            text += " " + device.Description.HostName + ":" + states[static_cast<int>(device.State)];
        }
        return text;
    }

    void Handle(const std::string& kind, const std::string& text)
    {
        Say(kind + " " + text);
        std::unique_lock<std::mutex> lock(mutex);
        std::string action = actions[kind];
        if (action == "throw")
        {
            throw std::runtime_error("thrown by the handler");
        }
        if (action == "hold")
        {
            Say("holding");
            released.wait(lock, [this] { return isReleased; });
            Say("handler " + Outcome([this] { session->Discover(); }));
            action = "stop";
        }
        lock.unlock();
        if (!action.empty())
        {
            Say("handler " + Outcome([&] { commands.at(action)({}); }));
        }
    }

    void Release()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isReleased = true;
        released.notify_all();
    }

    void SetAction(const std::string& kind, const std::string& action)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        actions[kind] = action;
    }

    static std::string Outcome(const std::function<void()>& action)
    {
        try
        {
            action();
            return "ok";
        }
        catch (const DiscoveryError& error)
        {
            return "error " + std::to_string(static_cast<unsigned>(error.Code())) + " " + error.what();
        }
        catch (const std::exception& exception)
        {
            return std::string("failure ") + exception.what();
        }
    }

    void Say(const std::string& line)
    {
        const std::lock_guard<std::mutex> lock(output);
        std::cout << line << std::endl;
    }

    static std::string WithNul(std::string text)
    {
        const std::size_t escape = text.find("\\0");
        return escape == std::string::npos ? text : text.replace(escape, 2, 1, '\0');
    }

    const std::map<std::string, std::function<void(const Arguments&)>> commands = {
        {"open", [this](const Arguments& words) { Open(words); }},
        {"second", [](const Arguments& words) { DiscoverySession{words[0]}; }},
        {"start", [this](const Arguments&) { Start(); }},
        {"stop", [this](const Arguments&) { session->Stop(); }},
        {"close", [this](const Arguments&) { session->Close(); }},
        {"close-in-background",
         [this](const Arguments&) {
             closer = std::thread([this] { Say("closed " + Outcome([this] { session->Close(); })); });
         }},
        {"discover", [this](const Arguments&) { session->Discover(); }},
        {"refresh", [this](const Arguments& words) { session->RefreshClient(words[0]); }},
        {"reach", [this](const Arguments& words) { session->ReachClient(words[0]); }},
        {"rename", [this](const Arguments& words) { session->ChangeClientsHostName(WithNul(words[0]), words[1]); }},
        {"rename-ip", [this](const Arguments& words) { session->ChangeClientsHostNameWithIP(words[0], words[1]); }},
        {"configure",
         [this](const Arguments& words) {
             session->ChangeClientsIPConfigurations(
                 {{words.at(0), words.at(1), words.at(2), words.at(3), words.at(4), words.at(5)}});
         }},
        {"provider",
         [this](Arguments words) {
             words.erase(std::remove(words.begin(), words.end(), ""), words.end());
             session->InitBroadcastProvider(words);
         }},
        {"min-version", [this](const Arguments& words) { session->SetMinCompatibleVersion(words[0]); }},
        {"inventory", [this](const Arguments& words) { OpenInventory(words); }},
        {"search", [this](const Arguments& words) { Search(words); }},
        {"devices", [this](const Arguments&) { Say("devices" + Listed(inventory->Devices())); }},
        {"give-name",
         [this](const Arguments& words) { Change([&] { return inventory->Rename(words.at(0), words.at(1)); }); }},
        {"give-name-in-background",
         [this](const Arguments& words) { changer = std::thread([=] { commands.at("give-name")(words); }); }},
        {"give-back", [this](const Arguments&) { Change([&] { return inventory->Undo(last); }); }},
        {"give-back-newest",
         [this](const Arguments& words) { Change([&] { return inventory->UndoNewest(words.at(0)); }); }},
        {"journal",
         [this](const Arguments&) {
             std::string text = "journal";
             for (const auto& each : inventory->Journal())
             {
                 text += " " + each.MACAddress + (each.IsOpen ? ":open" : each.IsUndone ? ":undone" : ":done");
             }
             Say(text);
         }},
        {"held", [this](const Arguments&) { Say(inventory->IsPortHeld() ? "held yes" : "held no"); }},
        {"on", [this](const Arguments& words) { SetAction(words[0], words[1]); }},
        {"release", [this](const Arguments&) { Release(); }},
    };
    std::mutex output;
    std::mutex mutex;
    std::map<std::string, std::string> actions; // guarded by mutex
    bool isReleased = false;                    // guarded by mutex
    std::condition_variable released;
    std::string address;
    std::unique_ptr<DiscoverySession> session;
    std::unique_ptr<DiscoveryInventorySession> inventory; // ends before its session
    Zent::Discovery::ChangeOutcome last;                  // of a change
    std::thread closer;
    std::thread changer;
};
} // namespace

int main()
{
    Host host;
    std::cout << "ready" << std::endl;
    for (std::string line; std::getline(std::cin, line);)
    {
        if (!line.empty() && line.back() == '\r')
        {
            line.pop_back();
        }
        host.Execute(line);
    }
}
