#include "Discovery/DiscoveryHost.h"
#include "Json/JSONStringer.h"
#include "support/ExpectError.h"
#include "support/LogCapture.h"
#include "system/ErrorCodes.h"
#include "system/Exceptions.h"

#include <gtest/gtest.h>

#include <new>
#include <string>

using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using Zent::Discovery::DiscoveryHost;
using Zent::Discovery::DiscoveryHostProduct;
using Zent::Discovery::FileTransferInfos;
using Zent::Discovery::NICConfig;
namespace ErrorCodes = Nfx::System::ErrorCodes;
using namespace std::string_literals;

namespace
{
const std::string NIC = R"({"FriendlyName":"eth0","MACAddress":"00:1A:2B:3C:4D:5E","IPAddress":"192.168.1.7",)"
                        R"("SubNetMask":"255.255.255.0","DefaultGateway":"192.168.1.1","MTU":"1500"})";
const std::string Product = R"({"ProductType":"t","ProductSerialNumber":"s","ProductVersion":"v","ProductName":"n"})";

/// A host document with some members replaced; an empty replacement leaves the member out.
std::string Host(const std::string& key = "", const std::string& replacement = "")
{
    const std::pair<std::string, std::string> members[] = {
        {"HostName", R"("HostName":"box")"},
        {"IsHostNameReadOnly", R"("IsHostNameReadOnly":false)"},
        {"RebootRequiredForIPConfigChange", R"("RebootRequiredForIPConfigChange":true)"},
        {"RebootRequiredForHostNameChange", R"("RebootRequiredForHostNameChange":true)"},
        {"DeviceType", R"("DeviceType":"panel")"},
        {"DeviceFamily", R"("DeviceFamily":"family")"},
        {"SerialNumber", R"("SerialNumber":"4711")"},
        {"NICs", "\"NICs\":[" + NIC + "," + NIC + "]"},
        {"Products", "\"Products\":[" + Product + "]"},
        {"FileTransferInfos", R"("FileTransferInfos":{"z":"1","a":"2"})"},
    };
    std::string text = "{";
    for (const auto& [name, member] : members)
    {
        const std::string& written = name == key ? replacement : member;
        text += (text == "{" || written.empty() ? "" : ",") + written;
    }
    return text + "}";
}

template <class T>
std::string Rewrite(const std::string& json)
{
    T record;
    record.Deserialize(String(json));
    return std::string(record.ToJson().View());
}

template <class T>
T Read(const std::string& json)
{
    T record;
    record.Deserialize(String(json));
    return record;
}

/// The message of the exception for a missing member; empty when nothing is thrown.
template <class T>
std::string Missing(const std::string& json)
{
    try
    {
        Read<T>(json);
    }
    catch (const Nfx::System::Exception& exception)
    {
        EXPECT_EQ(exception.GetError().Code(), ErrorCodes::ResourceNotFound);
        return std::string(exception.GetMessage().View());
    }
    return "";
}

TEST(HostRecordsTest, ACompleteHostReadsAndWritesBackTheSame)
{
    EXPECT_EQ(Rewrite<DiscoveryHost>(Host()), Host());
    const DiscoveryHost host = Read<DiscoveryHost>(Host());
    EXPECT_EQ(host.NICs[1]->IPAddress.ToString(), "192.168.1.7");
    EXPECT_EQ(host.Products[0]->ProductSerialNumber, "s");
}

TEST(HostRecordsTest, OptionalMembersOfAHostHaveDefaults)
{
    for (const char* readOnly : {"", R"("IsHostNameReadOnly":"false")", R"("IsHostNameReadOnly":0)"})
    {
        EXPECT_TRUE(Read<DiscoveryHost>(Host("IsHostNameReadOnly", readOnly)).IsHostNameReadOnly) << readOnly;
    }
    const std::string needed =
        R"({"hostname":"box","DEVICETYPE":"panel","NICs":[],"Products":[],"FileTransferInfos":{}})";
    DiscoveryHost host = Read<DiscoveryHost>(Host()); // what it holds from before must not shine through
    host.Deserialize(String(needed));
    EXPECT_EQ(host.ToJson(),
              R"({"HostName":"box","IsHostNameReadOnly":true,"RebootRequiredForIPConfigChange":false,)"
              R"("RebootRequiredForHostNameChange":false,"DeviceType":"panel","DeviceFamily":"","SerialNumber":"",)"
              R"("NICs":[],"Products":[],"FileTransferInfos":{}})");
}

TEST(HostRecordsTest, MissingMembersAreNamed)
{
    EXPECT_EQ(Missing<DiscoveryHost>(Host("HostName")), "String HostName not found");
    EXPECT_EQ(Missing<DiscoveryHost>(Host("DeviceType", R"("DeviceType":1)")), "String DeviceType not found");
    EXPECT_EQ(Missing<DiscoveryHost>(Host("NICs")), "Array NICs not found");
    EXPECT_EQ(Missing<DiscoveryHost>(Host("Products", R"("Products":{})")), "Array Products not found");
    EXPECT_EQ(Missing<DiscoveryHost>(Host("NICs", R"("NICs":[1])")), "Object 0 not found");
    EXPECT_EQ(Missing<DiscoveryHost>(Host("Products", R"("Products":[{}])")), "String ProductType not found");
    EXPECT_EQ(Missing<NICConfig>("{}"), "String FriendlyName not found");
    for (const char* key : {"FriendlyName", "MACAddress", "IPAddress", "SubNetMask", "DefaultGateway"})
    {
        std::string nic = NIC;
        nic.replace(nic.find(key), 1, "_");
        EXPECT_EQ(Missing<NICConfig>(nic), "String " + std::string(key) + " not found");
    }
    for (const char* key : {"ProductType", "ProductSerialNumber", "ProductVersion", "ProductName"})
    {
        std::string product = Product;
        product.replace(product.find(key), 1, "_");
        EXPECT_EQ(Missing<DiscoveryHostProduct>(product), "String " + std::string(key) + " not found");
    }
}

TEST(HostRecordsTest, ANICWithoutGatewayOrMTUSaysSo)
{
    NICConfig nic = Read<NICConfig>(NIC);
    EXPECT_TRUE(nic.HasDefaultGateway);
    nic.Deserialize(R"({"FriendlyName":"","MACAddress":"1:2:3:4:5:6","IPAddress":"1.2.3.4","SubNetMask":"0.0.0.0",)"
                    R"("DefaultGateway":"","MTU":1500})");
    EXPECT_FALSE(nic.HasDefaultGateway);
    EXPECT_EQ(nic.DefaultGateway.ToString(), "0.0.0.0");
    EXPECT_EQ(nic.ToJson(),
              R"({"FriendlyName":"","MACAddress":"01:02:03:04:05:06","IPAddress":"1.2.3.4","SubNetMask":"0.0.0.0",)"
              R"("DefaultGateway":"","MTU":"Unknown"})");
}

TEST(HostRecordsTest, DefectiveFileTransferInfosAreLoggedAndTheHostIsKept)
{
    const std::pair<const char*, const char*> cases[] = {
        {"", "{}"},
        {R"("FileTransferInfos":"text")", "{}"},
        {R"("FileTransferInfos":[])", "{}"},
        {R"("FileTransferInfos":{"a":"1","b":2,"c":"3"})", R"({"a":"1"})"},
        {R"("FileTransferInfos":{"a":1,"A":"hidden"})", "{}"},
    };
    for (const auto& [replacement, expected] : cases)
    {
        SCOPED_TRACE(replacement);
        const Tests::LogCapture log(LogStreamLevel::Standard);
        const DiscoveryHost host = Read<DiscoveryHost>(Host("FileTransferInfos", replacement));
        EXPECT_EQ(log.TypesOf("No FileTransfer infos or failed to parse JSON data"), "S");
        EXPECT_EQ(host.FileTransferInfos->ToJson(), expected);
        EXPECT_EQ(host.SerialNumber, "4711");
    }
}

TEST(HostRecordsTest, AnExceptionWhileFileTransferInfosAreWrittenLosesThemAlone)
{
    class Defective final : public FileTransferInfos
    {
    public:
        void Serialize(Zent::Utils::Json::JSONStringer& stringer) const override
        {
            stringer.Object();
            stringer.Key("half");
            stringer.Array();
            if (IsForWantOfMemory)
            {
                throw std::bad_alloc();
            }
            throw Nfx::System::InvalidOperationException("test", 1);
        }

        bool IsForWantOfMemory = false;
    };

    DiscoveryHost host = Read<DiscoveryHost>(Host());
    const auto defective = Nfx::System::SmartPointer<Defective>::Create();
    host.FileTransferInfos = defective;
    const Tests::LogCapture log(LogStreamLevel::Critical);
    for (const char* code : {"|E|$0x0000001E|", "|E|$0x0000001B|"})
    {
        EXPECT_EQ(host.ToJson().View(), Host("FileTransferInfos", R"("FileTransferInfos":{})"));
        EXPECT_EQ(log.Count(code + "Exception caught during JSON FileTransfer infos parsing -> ignoring."s), 1);
        defective->IsForWantOfMemory = true;
    }
    host.FileTransferInfos = nullptr;
    EXPECT_EQ(host.ToJson().View(), Host("FileTransferInfos", R"("FileTransferInfos":{})"));
}

TEST(HostRecordsTest, FileTransferInfosKeepTheOrderAndTheFirstValueOfAKey)
{
    EXPECT_EQ(Rewrite<FileTransferInfos>(R"({"z":"1","a":"","":"2","z":"3","A":"4"})"),
              R"({"z":"1","a":"","":"2","A":""})");

    FileTransferInfos infos = Read<FileTransferInfos>(R"({"Path":"/a/b"})");
    infos.Add("User", "x");
    EXPECT_ERROR(infos.Add("Path", "other"), ErrorCodes::Argument);
    String value = "untouched";
    EXPECT_FALSE(infos.TryGetValue("path", value));
    EXPECT_EQ(value, "untouched");
    EXPECT_TRUE(infos.TryGetValue("User", value));
    EXPECT_EQ(value, "x");
    EXPECT_EQ(infos.ToJson(), R"({"Path":"/a/b","User":"x"})");
    EXPECT_EQ(infos.Count(), 2u);
    const std::string repeated = R"(","abC":"","aBc":"","aBC":"","Abc":"","AbC":""})"; // the value six times
    EXPECT_ERROR(Rewrite<FileTransferInfos>(R"({"abc":")" + std::string(300, 'x') + repeated),
                 ErrorCodes::InvalidFormat);
}

} // namespace
