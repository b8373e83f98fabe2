#include "Discovery/Message/AllSendYourSignatureMessage.h"
#include "Discovery/Message/ByeMessage.h"
#include "Discovery/Message/ChangeYourHostNameMessage.h"
#include "Discovery/Message/ChangeYourIPConfigMessage.h"
#include "Discovery/Message/DiscoveryMessageDeserializer.h"
#include "Discovery/Message/HelloMessage.h"
#include "Discovery/Message/SendYourSignatureMessage.h"
#include "support/ExpectError.h"
#include "support/LogCapture.h"
#include "system/ErrorCodes.h"

#include <gtest/gtest.h>

#include <string>

using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::Version;
using Nfx::System::LogStreams::LogStreamLevel;
using namespace Zent::Discovery;
namespace ErrorCodes = Nfx::System::ErrorCodes;

namespace
{
const std::string NIC = R"({"FriendlyName":"eth0","MACAddress":"00:1A:2B:3C:4D:5E","IPAddress":"192.168.1.7",)"
                        R"("SubNetMask":"255.255.255.0","DefaultGateway":"","MTU":"Unknown"})";
const std::string Host =
    R"({"HostName":"box","IsHostNameReadOnly":false,"RebootRequiredForIPConfigChange":false,)"
    R"("RebootRequiredForHostNameChange":false,"DeviceType":"panel","DeviceFamily":"","SerialNumber":"",)"
    R"("NICs":[],"Products":[],"FileTransferInfos":{}})";
const MACAddress Target = MACAddress::Parse("00:1A:2B:3C:4D:5E");

std::string Envelope(const std::string& type, const std::string& broadcast = "True")
{
    return R"({"DiscoveryMessageType":")" + type + R"(","DiscoveryVersion":"1.0.18","Broadcast":")" + broadcast + "\"";
}

SmartPointer<DiscoveryMessage> Deserialize(const std::string& json)
{
    return DiscoveryMessageDeserializer().Deserialize(String(json));
}

std::string Rewrite(const std::string& json)
{
    return std::string(DiscoveryMessageDeserializer().Serialize(*Deserialize(json)).View());
}

/// Expects a text to be refused after exactly one line, Critical, on this channel.
void ExpectRejected(const std::string& json, const std::string& channel, const std::string& line)
{
    SCOPED_TRACE(json);
    const Tests::LogCapture log(LogStreamLevel::Debug);
    EXPECT_ERROR(Deserialize(json), ErrorCodes::InvalidFormat);
    EXPECT_EQ(log.TypesOf(line), "C") << log.Text();
    EXPECT_EQ(log.Count("BAD MESSAGE FORMAT !"), 1) << log.Text();
    EXPECT_TRUE(log.HasInOrder({channel, line})) << log.Text();
}

TEST(DiscoveryMessageTest, EveryKindReadsAndWritesBackTheSame)
{
    const std::string members = ",\"Host\":" + Host + ",\"SourceNIC\":" + NIC + "}";
    const std::string cases[] = {
        Envelope("SignatureBroadcast") + members,
        Envelope("Hello") + members,
        Envelope("Bye", "False") + members,
        Envelope("Hello") + ",\"Host\":" + Host + "}",
        Envelope("ChangeYourIPConfig") + ",\"NewNICConfigs\":[" + NIC + "," + NIC + "]}",
        Envelope("ChangeYourIPConfig") + ",\"NewNICConfigs\":[]}",
        Envelope("SendYourSignature", "False") + R"(,"TargetedMACAddress":"00:1A:2B:3C:4D:5E"})",
        Envelope("AllSendYourSignature") + "}",
        Envelope("ChangeYourHostName") + R"(,"NewHostName":"new","TargetedMACAddress":"00:1A:2B:3C:4D:5E"})",
    };
    for (const std::string& json : cases)
    {
        SCOPED_TRACE(json);
        EXPECT_EQ(Rewrite(json), json);
        EXPECT_EQ(Deserialize(json)->GetMessageType(), DiscoveryMessage::GetMessageType(String(json)));
    }
    EXPECT_FALSE(Deserialize(cases[1]).As<HelloMessage>().IsNull());
    EXPECT_FALSE(Deserialize(cases[2]).As<ByeMessage>().IsNull());
}

TEST(DiscoveryMessageTest, MessagesCarryTheVersionThatTheyAreBuiltWith)
{
    const Version other(2, 3);
    const SmartPointer<DiscoveryMessage> messages[] = {
        SmartPointer<DiscoveryMessage>(new AllSendYourSignatureMessage(other)),
        SmartPointer<DiscoveryMessage>(new SendYourSignatureMessage(other, Target)),
        SmartPointer<DiscoveryMessage>(new ChangeYourHostNameMessage(other, Target, "new")),
        SmartPointer<DiscoveryMessage>(new ChangeYourIPConfigMessage(other)),
        SmartPointer<DiscoveryMessage>(new HelloMessage(other)),
    };
    for (const SmartPointer<DiscoveryMessage>& message : messages)
    {
        EXPECT_EQ(message->Version, other);
        EXPECT_TRUE(message->Broadcast);
    }
}

TEST(DiscoveryMessageTest, TheEnvelopeIsReadAsItsWriterMeantIt)
{
    const std::pair<const char*, const char*> cases[] = {
        {R"("DiscoveryVersion":"01.00.18","Broadcast":"False")", R"("DiscoveryVersion":"1.0.18","Broadcast":"False")"},
        {R"("discoveryversion":"2.0","broadcast":"False")", R"("DiscoveryVersion":"2.0","Broadcast":"False")"},
        {R"("DiscoveryVersion":"1.2.3.4")", R"("DiscoveryVersion":"1.2.3.4","Broadcast":"True")"},
        {R"("DiscoveryVersion":"1.2","Broadcast":false)", R"("DiscoveryVersion":"1.2","Broadcast":"True")"},
    };
    for (const auto& [members, expected] : cases)
    {
        SCOPED_TRACE(members);
        const std::string type = R"({"DiscoveryMessageType":"AllSendYourSignature",)";
        EXPECT_EQ(Rewrite(type + members + "}"), type + expected + "}");
    }
    const Tests::LogCapture log(LogStreamLevel::Debug);
    Deserialize(R"({"DiscoveryMessageType":"AllSendYourSignature","DiscoveryVersion":"1.0","Broadcast":true})");
    EXPECT_EQ(log.TypesOf("No Broadcast key. Assuming broadcast message."), "D");
}

TEST(DiscoveryMessageTest, ADefectiveEnvelopeIsRejectedWithALine)
{
    const std::string type = R"({"DiscoveryMessageType":"AllSendYourSignature")";
    ExpectRejected("{}", "DiscoveryMessage", "No message type key !!! => BAD MESSAGE FORMAT !");
    ExpectRejected(R"({"DiscoveryMessageType":5,"DiscoveryVersion":"1.0"})", "DiscoveryMessage",
                   "No message type key !!! => BAD MESSAGE FORMAT !");
    ExpectRejected(type + "}", "DiscoveryMessage", "No version key !!! => BAD MESSAGE FORMAT !");
    ExpectRejected(type + R"(,"DiscoveryVersion":1.0})", "DiscoveryMessage",
                   "No version key !!! => BAD MESSAGE FORMAT !");
    ExpectRejected(type + R"(,"DiscoveryVersion":"1.0","Broadcast":"true"})", "DiscoveryMessage",
                   "No valid value for Broadcast key !!! => BAD MESSAGE FORMAT !");
    for (const char* const text : {"", "[]", R"({"DiscoveryMessageType":"AllSendYourSignature")"})
    {
        EXPECT_ERROR(Deserialize(text), ErrorCodes::InvalidFormat);
    }
}

TEST(DiscoveryMessageTest, MissingMembersOfAKindAreRejectedWithItsLine)
{
    ExpectRejected(Envelope("Bye") + R"(,"Host":"box"})", "SignatureBroadcastMessage",
                   "No Host key !!! => BAD MESSAGE FORMAT !");
    ExpectRejected(Envelope("Hello") + R"(,"Host":{"HostName":"box","DeviceType":"","Products":[]}})",
                   "SignatureBroadcastMessage", "Failed to parse Host !!! => BAD MESSAGE FORMAT !");
    std::string badNIC = NIC;
    badNIC.replace(badNIC.find("255"), 3, "256");
    ExpectRejected(Envelope("Hello") + R"(,"Host":{"HostName":"box","DeviceType":"","NICs":[)" + badNIC +
                       R"(],"Products":[]}})",
                   "SignatureBroadcastMessage", "Failed to parse Host !!! => BAD MESSAGE FORMAT !");
    ExpectRejected(Envelope("SendYourSignature") + "}", "SendYourSignatureMessage",
                   "No targeted MAC address !!! => BAD MESSAGE FORMAT !");
    ExpectRejected(Envelope("ChangeYourIPConfig") + R"(,"NewNICConfigs":{}})", "ChangeYourIPConfigMessage",
                   "No \"New NIC Configs\" key !!! => BAD MESSAGE FORMAT !");
    ExpectRejected(Envelope("ChangeYourHostName") + R"(,"TargetedMACAddress":"0:0:0:0:0:0"})",
                   "ChangeYourHostNameMessage", "No \"New HostName\" key !!! => BAD MESSAGE FORMAT !");
    ExpectRejected(Envelope("ChangeYourHostName") + R"(,"NewHostName":"new"})", "ChangeYourHostNameMessage",
                   "No \"Targeted MACAddress\" key !!! => BAD MESSAGE FORMAT !");
    EXPECT_ERROR(Deserialize(Envelope("SendYourSignature") + R"(,"TargetedMACAddress":"0:0:0:0:0"})"),
                 ErrorCodes::InvalidFormat);
}

TEST(DiscoveryMessageTest, ADefectiveSourceNICIsLoggedAndLeftOut)
{
    const std::string host = ",\"Host\":" + Host;

    struct Case
    {
        std::string Member;
        const char* Line;
        const char* Type;
    };

    const Case cases[] = {
        {"", "No Source NIC key. Ignoring.", "S"},
        {",\"SourceNIC\":null", "No Source NIC key. Ignoring.", "S"},
        {",\"SourceNIC\":{}", "Failed to parse source NIC -> Ignoring.", "C"},
        {",\"SourceNIC\":" + NIC.substr(0, NIC.size() - 1) + ",\"x\":0},\"sourcenic\":{}", "gnoring", ""},
    };
    for (const auto& [member, line, type] : cases)
    {
        SCOPED_TRACE(member);
        const Tests::LogCapture log(LogStreamLevel::Standard);
        const auto message = Deserialize(Envelope("Hello") + host + member + "}").As<SignatureBroadcastMessage>();
        EXPECT_EQ(message->Host->HostName, "box");
        EXPECT_EQ(message->SourceNIC.IsNull(), type[0] != '\0');
        EXPECT_EQ(log.TypesOf("gnoring"), type) << log.Text();
        EXPECT_EQ(log.TypesOf(line), type) << log.Text();
    }
}

TEST(DiscoveryMessageTest, DefectiveNICConfigsAreLoggedOneByOneAndLeftOut)
{
    std::string malformed = NIC;
    malformed.replace(malformed.find("192"), 3, "300");
    const Tests::LogCapture log(LogStreamLevel::Critical);
    ChangeYourIPConfigMessage message({SmartPointer<NICConfig>::Create()}); // which its new content replaces
    message.Deserialize(
        String(Envelope("ChangeYourIPConfig") + ",\"NewNICConfigs\":[1," + NIC + ",{}," + malformed + ",[]]}"));
    EXPECT_EQ(message.NewNICConfigs.Count(), 1);
    EXPECT_EQ(log.TypesOf("Failed to parse NIC config !!! Ignoring this one..."), "CCCC");
}

TEST(DiscoveryMessageTest, OfManyDefectiveNICConfigsTheFirstHaveALineEachAndTheRestOneForAll)
{
    for (const int defects : {64, 65, 1000})
    {
        SCOPED_TRACE(defects);
        std::string elements;
        for (int count = 0; count < defects; ++count)
        {
            elements += "1,";
        }
        const Tests::LogCapture log(LogStreamLevel::Critical);
        const auto message =
            Deserialize(Envelope("ChangeYourIPConfig") + ",\"NewNICConfigs\":[" + elements + NIC + "]}")
                .As<ChangeYourIPConfigMessage>();
        EXPECT_EQ(message->NewNICConfigs.Count(), 1);
        EXPECT_EQ(log.TypesOf("Failed to parse NIC config !!! Ignoring this one..."), std::string(64, 'C'));
        const std::string rest = "Failed to parse NIC config !!! Ignoring " + std::to_string(defects - 64) + " more...";
        EXPECT_EQ(log.TypesOf(" more..."), defects > 64 ? "C" : "");
        EXPECT_EQ(log.Has(rest), defects > 64);
    }
}

TEST(DiscoveryMessageTest, AValueThatIsNoKindIsRefusedWithALine)
{
    const Tests::LogCapture log(LogStreamLevel::Critical);
    EXPECT_ERROR(DiscoveryMessageDeserializer::CreateMessage(7), ErrorCodes::VariableTypeWrong);
    EXPECT_TRUE(log.HasInOrder({"DiscoveryMessageDeserializer", "Message type not supported !!!"}));
    EXPECT_EQ(log.TypesOf("Message type not supported !!!"), "C");
}
} // namespace
