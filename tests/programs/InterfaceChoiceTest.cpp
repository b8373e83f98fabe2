#include "Programs/InterfaceChoice.h"

#include "Programs/WrongArgument.h"

#include <gtest/gtest.h>

using namespace Zent::Discovery::Programs;
using Zent::Discovery::Inventory::Network;

namespace
{
using Texts = std::vector<std::string>;

const std::vector<NetworkInterface> Machine = {
    {.Name = "lo", .Addresses = {Network::Parse("127.0.0.1/8")}, .CanBroadcast = false, .IsLoopback = true},
    {.Name = "eth0", .Addresses = {Network::Parse("10.0.0.5/24"), Network::Parse("10.9.0.5/16")}},
    {.Name = "eth1", .Addresses = {Network::Parse("10.1.0.5/24")}, .IsUp = false},
    {.Name = "wlan0", .Addresses = {}},
    {.Name = "docker0", .Addresses = {Network::Parse("172.17.0.1/16")}},
    {.Name = "ppp0", .Addresses = {Network::Parse("10.2.0.5/32")}, .CanBroadcast = false, .IsPointToPoint = true},
};

TEST(InterfaceChoiceTest, LeavesOutWhereNoDevicesAreAndSaysWhy)
{
    const InterfaceChoice choice(Machine, {});
    EXPECT_EQ(choice.AddressTexts(), (Texts{"10.0.0.5", "10.9.0.5"}));
    EXPECT_EQ(choice.LeftOut(), "lo (loopback), eth1 (down), wlan0 (without an IPv4 address), "
                                "docker0 (left out by its name), ppp0 (point-to-point)");
}

TEST(InterfaceChoiceTest, TheUsersWordCountsAlone)
{
    EXPECT_EQ(InterfaceChoice(Machine, {.All = true}).AddressTexts(),
              (Texts{"127.0.0.1", "10.0.0.5", "10.9.0.5", "172.17.0.1", "10.2.0.5"}));
    EXPECT_EQ(InterfaceChoice(Machine, {.Names = {"docker0", "eth1"}}).AddressTexts(), Texts{"172.17.0.1"});
    EXPECT_EQ(InterfaceChoice(Machine, {.Addresses = {"127.0.0.9", "010.009.0.5"}}).AddressTexts(),
              (Texts{"127.0.0.9", "10.9.0.5"}));
    EXPECT_EQ(InterfaceChoice(Machine, {.Addresses = {"10.0.0.6"}}).AddressTexts(), Texts{});
    const InterfaceChoice unplugged(Machine, {.Addresses = {"10.1.0.5"}});
    EXPECT_EQ(unplugged.AddressTexts(), Texts{});
    EXPECT_EQ(unplugged.LeftOut(), "10.1.0.5 (down)");
}

TEST(InterfaceChoiceTest, WhatTheMachineDoesNotHaveIsRefusedWithWhatItHas)
{
    const auto complaint = [](const InterfaceChoice::Wishes& wishes) -> std::string {
        try
        {
            InterfaceChoice::Check(Machine, wishes);
            return "";
        }
        catch (const WrongArgument& error)
        {
            return error.what();
        }
    };
    EXPECT_EQ(complaint({.Addresses = {"10.0.0.5", "10.0.0.6"}}),
              "--from: \"10.0.0.6\" is no address of this machine; it has 127.0.0.1, 10.0.0.5, 10.9.0.5, 10.1.0.5, "
              "172.17.0.1, 10.2.0.5");
    EXPECT_EQ(complaint({.Names = {"eth7"}}),
              "--interface: \"eth7\" is no interface of this machine; it has lo, eth0, eth1, wlan0, docker0, ppp0");
    EXPECT_EQ(complaint({.Addresses = {"127.1.2.3"}, .Names = {}}), "");
}
} // namespace
