#include "Fleet/Command.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace Zent::Discovery::Fleet;
using Json = nlohmann::json;

namespace
{
const SiteTopics Topics("a");

CommandMessage Message(std::string payload)
{
    return {std::move(payload), "discovery/v1/a/replies/ann/1", "7", 30};
}

const char Rename[] = R"({"Command":"rename","Device":"02-00-00-00-00-01","Revision":"r1","HostName":"press-4"})";

std::string CodeOf(const CommandMessage& message)
{
    try
    {
        Command::Read(message, Topics);
        return "";
    }
    catch (const Refusal& refusal)
    {
        return refusal.Code();
    }
}

TEST(CommandTest, AMessageMustNotWriteElsewhereNorBeOldNorBeRepeated)
{
    EXPECT_EQ(CodeOf(Message(Rename)), "");
    CommandMessage message = Message(Rename);
    for (const char* topic : {"", "discovery/v1/a/devices/02-00-00-00-00-01", "discovery/v1/b/replies/ann/1"})
    {
        message.ResponseTopic = topic;
        EXPECT_EQ(CodeOf(message), "foreign-topic") << topic;
    }
    message = Message(Rename);
    message.ExpirySeconds.reset();
    EXPECT_EQ(CodeOf(message), "no-expiry");
    message.ExpirySeconds = 31;
    EXPECT_EQ(CodeOf(message), "expiry-too-long");
    message.ExpirySeconds = 0;
    EXPECT_EQ(CodeOf(message), "expired");
    message = Message(Rename);
    message.IsRetained = true;
    EXPECT_EQ(CodeOf(message), "retained");
    message = Message(Rename);
    message.CorrelationData = std::string(129, 'x');
    EXPECT_EQ(CodeOf(message), "bad-command");
}

TEST(CommandTest, CommandsSurviveTheRoundTripAndIncompleteOnesAreRefused)
{
    for (const char* payload :
         {Rename, R"({"Command":"discover"})", R"({"Command":"refresh","Device":"02-00-00-00-00-01"})",
          R"({"Command":"configure","Device":"02-00-00-00-00-01","Revision":"r","Settings":{"IPAddress":"10.0.0.5"}})"})
    {
        EXPECT_EQ(Json::parse(Command::Read(Message(payload), Topics).ToJson()), Json::parse(payload));
    }
    for (const char* payload :
         {"", "[]", R"({"Command":"reboot"})", R"({"Command":"refresh"})", R"({"Command":"refresh","Device":"x"})",
          R"({"Command":"rename","Device":"02-00-00-00-00-01","HostName":"press-4"})",
          R"({"Command":"rename","Device":"02-00-00-00-00-01","Revision":"r1","HostName":4})",
          R"({"Command":"configure","Device":"02-00-00-00-00-01","Revision":"r1","Settings":[]})"})
    {
        EXPECT_EQ(CodeOf(Message(payload)), "bad-command") << payload;
    }
}

TEST(CommandTest, WhatWasMeantForADeviceAsItWasIsRefusedWhenItIsAnotherOne)
{
    const Command command = Command::Read(Message(Rename), Topics);
    EXPECT_NO_THROW(command.CheckRevision("r1"));
    EXPECT_THROW(command.CheckRevision("r2"), Refusal);
}

TEST(CommandTest, TheAuditLineNamesSenderAndVerdictAndHoldsNoEndOfALine)
{
    CommandMessage message = Message("\n\"\xFF" + std::string(1000, 'x'));
    message.ResponseTopic = "elsewhere\n";
    const Verdict verdict = Verdict::Of(Refusal("foreign-topic", "no"));
    const std::string line = verdict.AuditLine(message, nullptr, Topics, WallTime());
    EXPECT_EQ(line.find('\n'), std::string::npos);
    EXPECT_LT(line.size(), 700u);
    EXPECT_EQ(Json::parse(line)["Sender"], Json());
    EXPECT_EQ(Json::parse(line)["Code"], "foreign-topic");

    const Command command = Command::Read(Message(Rename), Topics);
    const Json good = Json::parse(Verdict{"applied"}.AuditLine(Message(Rename), &command, Topics, WallTime()));
    EXPECT_EQ(good["Sender"], "ann");
    EXPECT_EQ(good["Command"], Json::parse(Rename));
    EXPECT_EQ(Verdict::Parse(verdict.ToJson()).Code, "foreign-topic");
}
} // namespace
