#include "FaultPlan.h"

#include "Cable.h"
#include "Timetable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace Zent::Discovery::Simulator
{
namespace
{
using namespace std::chrono_literals;

constexpr std::size_t Devices = 1000;

std::set<std::pair<std::size_t, std::uint64_t>> LostOf(std::uint64_t seed, double loss)
{
    Behaviour behaviour;
    behaviour.Loss = loss;
    const FaultPlan plan(seed, Devices, behaviour);
    std::set<std::pair<std::size_t, std::uint64_t>> lost;
    for (std::size_t device = 0; device < Devices; ++device)
    {
        for (std::uint64_t datagram = 0; datagram < 100; ++datagram)
        {
            if (plan.Treat(device, datagram).Copies == 0)
            {
                lost.emplace(device, datagram);
            }
        }
    }
    return lost;
}

TEST(FaultPlanTest, ASeedAlwaysLosesTheSameAndALargerShareThatAndMore)
{
    const auto few = LostOf(1, 0.05);
    const auto many = LostOf(1, 0.2);
    EXPECT_NEAR(static_cast<double>(few.size()), 5000, 300);
    EXPECT_NEAR(static_cast<double>(many.size()), 20000, 600);
    EXPECT_TRUE(std::ranges::includes(many, few));
    EXPECT_EQ(LostOf(1, 0.05), few);
    EXPECT_NE(LostOf(2, 0.05), few);
    EXPECT_TRUE(LostOf(1, 0).empty());
    EXPECT_EQ(LostOf(1, 1).size(), 100 * Devices);
}

TEST(FaultPlanTest, SpreadUsesAllOfItsTimeAndFaultsDoNotGoTogether)
{
    Behaviour behaviour;
    behaviour.Delay = 10ms;
    behaviour.Spread = 100ms;
    behaviour.Duplicate = behaviour.Malformed = 0.5;
    const FaultPlan plan(1, Devices, behaviour);
    std::size_t late = 0;
    std::size_t both = 0;
    for (std::size_t device = 0; device < Devices; ++device)
    {
        const Treatment treatment = plan.Treat(device, 0);
        EXPECT_GE(treatment.Delay, 10ms);
        EXPECT_LT(treatment.Delay, 110ms);
        late += treatment.Delay >= 60ms ? 1u : 0u;
        both += treatment.Copies == 2 && treatment.Form == Treatment::Forms::Cut ? 1u : 0u;
        EXPECT_LT(treatment.KeptShare, treatment.Form == Treatment::Forms::Cut ? 1.0 : 1.1);
    }
    EXPECT_NEAR(static_cast<double>(late), 500, 60);
    EXPECT_NEAR(static_cast<double>(both), 250, 60);
}

TEST(FaultPlanTest, LinesChangeTheBehaviourAndWrongOnesNothing)
{
    Behaviour behaviour;
    behaviour.DiesAfter = 5s;
    FaultPlan plan(1, 20, behaviour);
    EXPECT_EQ(plan.Follow("loss 100%"), std::nullopt);
    EXPECT_EQ(plan.Treat(3, 0).Copies, 0u);
    EXPECT_EQ(plan.Follow("\tsilent  on "), std::nullopt);
    EXPECT_TRUE(plan.Current().IsSilent);

    EXPECT_EQ(plan.Follow("kill 17"), std::nullopt);
    EXPECT_FALSE(plan.IsAlive(16, 0s));
    EXPECT_TRUE(plan.IsAlive(15, 4999ms));
    EXPECT_FALSE(plan.IsAlive(15, 5s));
    EXPECT_EQ(plan.Follow("revive 17"), std::size_t{16});
    EXPECT_TRUE(plan.IsAlive(16, 6s));

    for (const auto& [line, reason] :
         {std::pair("loss", "\"loss\" is not a name and a value"), std::pair(" loss ", "\" loss \" is not a name and"),
          std::pair("", "\"\" is not a name and a value"), std::pair("loss 5% 6%", "\"loss 5% 6%\" is not a name and"),
          std::pair("loss 5", "\"5\" is not a share"), std::pair("loss -1%", "\"-1%\" is not a share"),
          std::pair("loss nan%", "\"nan%\" is not a share"),
          std::pair("delay 1s", "\"1s\" is not a number of milliseconds"),
          std::pair("silent maybe", "\"maybe\" is not on or off"),
          std::pair("kill 0", "\"0\" is not a device's number from 1 to 20"),
          std::pair("revive 21", "\"21\" is not a device's number from 1 to 20"),
          std::pair("luck 5%", "\"luck\" is not kill, revive or a behaviour")})
    {
        SCOPED_TRACE(line);
        try
        {
            plan.Follow(line);
            ADD_FAILURE();
        }
        catch (const std::invalid_argument& error)
        {
            EXPECT_EQ(std::string_view(error.what()).substr(0, std::string_view(reason).size()), reason);
        }
    }
    EXPECT_EQ(plan.Current().Loss, 1);
    EXPECT_TRUE(plan.Current().IsSilent);
    EXPECT_TRUE(plan.IsAlive(16, 6s));
}

TEST(FaultPlanTest, DevicesAreSilentWhileTheyReboot)
{
    FaultPlan plan(1, 3, Behaviour());
    plan.Follow("reboot 4");
    plan.Reboot(1, 10s);
    plan.Reboot(0, 9s);
    plan.Reboot(1, 11s); // is about to already
    EXPECT_EQ(plan.NextRebooted(), 13s);
    EXPECT_TRUE(plan.IsAlive(1, 11999ms));
    EXPECT_FALSE(plan.IsAlive(1, 12s));
    EXPECT_EQ(plan.TakeRebooted(12999ms), std::nullopt);
    EXPECT_EQ(plan.TakeRebooted(14s), std::size_t{0});
    EXPECT_EQ(plan.TakeRebooted(14s), std::size_t{1});
    EXPECT_TRUE(plan.IsAlive(1, 14s));

    plan.Reboot(2, 20s);
    plan.Follow("kill 3");
    EXPECT_EQ(plan.NextRebooted(), std::nullopt);
}

TEST(TimetableTest, GivesWhatIsDueFirstAndEqualOnesInOrder)
{
    Timetable timetable;
    const Timetable::Time start{};
    for (const auto& [due, device] : {std::pair(3ms, 0u), std::pair(1ms, 1u), std::pair(1ms, 2u), std::pair(2ms, 3u)})
    {
        timetable.Add(start + due, {.Device = device, .Text = nullptr, .Target = {}, .How = {}});
    }
    EXPECT_EQ(timetable.Next(), start + 1ms);
    for (const std::size_t device : {1u, 2u, 3u, 0u})
    {
        EXPECT_EQ(timetable.Take().Device, device);
    }
    EXPECT_EQ(timetable.Next(), std::nullopt);
}

TEST(CableTest, TakesAsLongAsEthernetDoes)
{
    Cable cable;
    const Cable::Time start{};
    cable.Occupy(start, 1100, 0);
    EXPECT_EQ(cable.FreeAt(), start);
    cable.Occupy(start, 1100, 1000);
    EXPECT_EQ(cable.FreeAt(), start + 9328ns);
    cable.Occupy(start, 3000, 100); // three frames
    EXPECT_EQ(cable.FreeAt(), start + 254560ns);
    EXPECT_EQ(cable.PassedAt(start, 30ms), start + 30ms);
    EXPECT_EQ(cable.PassedAt(start + 10ms, 5ms), start + 30ms); // behind the one before
    EXPECT_EQ(cable.PassedAt(start + 10ms, 25ms), start + 35ms);
}
} // namespace
} // namespace Zent::Discovery::Simulator
