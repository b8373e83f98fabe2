#pragma once

#include "Inventory/Event.h"
#include "Inventory/Time.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Zent::Discovery::Inventory
{
class EventQueue;

/// Finds devices that contradict each other, and tells each contradiction once while it lasts.
class Conflicts final
{
public:
    /// Contradictions further apart in time are changes.
    static constexpr Time Together{60000};

    /// A name is told once nobody more has come with it for that time, so that all who bear it are counted.
    static constexpr Time NamesSettle{1000};

    /// accepted are texts of Conflict::ToString that are not told. The queue must outlive the object.
    Conflicts(const std::vector<std::string>& accepted, EventQueue& events);

    /// A device was heard; id tells it from the others.
    void Heard(std::uint64_t id, const std::shared_ptr<const Device>& device, Time now);

    /// A device has left, gone or been forgotten.
    void Remove(std::uint64_t id);

    void Advance(Time now);

private:
    /// What is known of a device.
    struct Known
    {
        std::shared_ptr<const Device> Latest = {};
        Time Heard{0};
        std::string Identity = {}; // serial number and interfaces
        std::string IdentityBefore = {};
        Time HeardBefore{0};            // with IdentityBefore
        Time Contradicted{Time::min()}; // when it last spoke as two devices
    };

    /// Who has an address or a name.
    struct Use
    {
        std::set<std::uint64_t> Holders;
        Time Changed{0};
        bool IsTold = false;
    };

    using Uses = std::unordered_map<std::string, Use>;

    void CheckIdentity(Known& known, const std::shared_ptr<const Device>& device, Time now);
    void CheckAddress(const std::string& address, Use& use, const Known& known, Time now);
    void Tell(Conflict conflict, Time now);
    void Enter(std::uint64_t id, const Device& device, Time now);
    void Withdraw(std::uint64_t id, const Device& device);
    static void WithdrawFrom(Uses& uses, const std::string& value, std::uint64_t id);

    const std::unordered_set<std::string> accepted;
    EventQueue& events;
    std::unordered_map<std::uint64_t, Known> devices;
    Uses addresses;
    Uses names;
    std::set<std::string> newNames; // that several have, not yet told
};
} // namespace Zent::Discovery::Inventory
