#include "endtoend/Limit.h"

#include "endtoend/Clock.h"

#include <cJSON.h>

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace Benchmarks
{
namespace
{
const char Version[] = "1.0.18";

std::string Text(const cJSON* object, const char* key)
{
    const cJSON* const member = cJSON_GetObjectItem(object, key);
    return cJSON_IsString(member) != 0 ? member->valuestring : "";
}

bool Flag(const cJSON* object, const char* key)
{
    return cJSON_IsTrue(cJSON_GetObjectItem(object, key)) != 0;
}

void Add(cJSON* object, const char* key, const std::string& value)
{
    cJSON_AddItemToObject(object, key, cJSON_CreateString(value.c_str()));
}

void Add(cJSON* object, const char* key, bool value)
{
    cJSON_AddItemToObject(object, key, cJSON_CreateBool(value ? 1 : 0));
}
} // namespace

Limit::Limit(CallBack callBack, const char* logFile)
    : callBack(callBack)
    , file(logFile == nullptr ? -1 : open(logFile, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666))
{
}

Limit::~Limit()
{
    if (file >= 0)
    {
        close(file);
    }
}

bool Limit::Handle(std::string_view datagram)
{
    cJSON* const json = cJSON_ParseWithLength(datagram.data(), datagram.size());
    const bool isSignature = Text(json, "DiscoveryMessageType") == "SignatureBroadcast" &&
                             Text(json, "DiscoveryVersion") == Version &&
                             cJSON_IsObject(cJSON_GetObjectItem(json, "Host")) != 0;
    if (!isSignature)
    {
        cJSON_Delete(json);
        return false;
    }
    const Host host = ReadHost(cJSON_GetObjectItem(json, "Host"));
    const NIC source = ReadNIC(cJSON_GetObjectItem(json, "SourceNIC"));
    cJSON_Delete(json);
    Log("MessageParser", "Message type : SignatureBroadcast");
    Log("ServerTaskProcessor", "Notifying receipt of Client Signature. Client's host name : ", host.HostName.c_str());

    cJSON* const document = cJSON_CreateObject();
    cJSON_AddItemToObject(document, "Host", Document(host));
    cJSON_AddItemToObject(document, "SourceNIC", Document(source));
    char* const text = cJSON_PrintUnformatted(document);
    cJSON_Delete(document);
    callBack(text);
    cJSON_free(text);
    return true;
}

std::string Limit::Request()
{
    Log("Discovery Server", "Discover");
    Log("ServerTaskProcessor", "Sending message of type AllSendYourSignature");
    cJSON* const json = cJSON_CreateObject();
    Add(json, "DiscoveryMessageType", std::string("AllSendYourSignature"));
    Add(json, "DiscoveryVersion", std::string(Version));
    Add(json, "Broadcast", std::string("True"));
    char* const printed = cJSON_PrintUnformatted(json);
    cJSON_Delete(json);
    std::string text = printed;
    cJSON_free(printed);
    return text;
}

Limit::NIC Limit::ReadNIC(const cJSON* json)
{
    return {Text(json, "FriendlyName"), Text(json, "MACAddress"),     Text(json, "IPAddress"),
            Text(json, "SubNetMask"),   Text(json, "DefaultGateway"), Text(json, "MTU")};
}

Limit::Host Limit::ReadHost(const cJSON* json)
{
    Host host;
    host.HostName = Text(json, "HostName");
    host.IsHostNameReadOnly = Flag(json, "IsHostNameReadOnly");
    host.RebootForIPConfig = Flag(json, "RebootRequiredForIPConfigChange");
    host.RebootForHostName = Flag(json, "RebootRequiredForHostNameChange");
    host.DeviceType = Text(json, "DeviceType");
    host.DeviceFamily = Text(json, "DeviceFamily");
    host.SerialNumber = Text(json, "SerialNumber");
    const cJSON* item = nullptr;
    cJSON_ArrayForEach(item, cJSON_GetObjectItem(json, "NICs"))
    {
        host.NICs.push_back(ReadNIC(item));
    }
    cJSON_ArrayForEach(item, cJSON_GetObjectItem(json, "Products"))
    {
        host.Products.push_back({Text(item, "ProductType"), Text(item, "ProductSerialNumber"),
                                 Text(item, "ProductVersion"), Text(item, "ProductName")});
    }
    cJSON_ArrayForEach(item, cJSON_GetObjectItem(json, "FileTransferInfos"))
    {
        host.FileTransferInfos.emplace_back(item->string, item->valuestring);
    }
    return host;
}

cJSON* Limit::Document(const NIC& nic)
{
    cJSON* const json = cJSON_CreateObject();
    Add(json, "FriendlyName", nic.FriendlyName);
    Add(json, "MACAddress", nic.MACAddress);
    Add(json, "IPAddress", nic.IPAddress);
    Add(json, "SubNetMask", nic.SubNetMask);
    Add(json, "DefaultGateway", nic.DefaultGateway);
    Add(json, "MTU", nic.MTU);
    return json;
}

cJSON* Limit::Document(const Host& host)
{
    cJSON* const json = cJSON_CreateObject();
    Add(json, "HostName", host.HostName);
    Add(json, "IsHostNameReadOnly", host.IsHostNameReadOnly);
    Add(json, "RebootRequiredForIPConfigChange", host.RebootForIPConfig);
    Add(json, "RebootRequiredForHostNameChange", host.RebootForHostName);
    Add(json, "DeviceType", host.DeviceType);
    Add(json, "DeviceFamily", host.DeviceFamily);
    Add(json, "SerialNumber", host.SerialNumber);
    cJSON* const nics = cJSON_CreateArray();
    for (const NIC& nic : host.NICs)
    {
        cJSON_AddItemToArray(nics, Document(nic));
    }
    cJSON_AddItemToObject(json, "NICs", nics);
    cJSON* const products = cJSON_CreateArray();
    for (const Product& product : host.Products)
    {
        cJSON* const element = cJSON_CreateObject();
        Add(element, "ProductType", product.Type);
        Add(element, "ProductSerialNumber", product.SerialNumber);
        Add(element, "ProductVersion", product.Version);
        Add(element, "ProductName", product.Name);
        cJSON_AddItemToArray(products, element);
    }
    cJSON_AddItemToObject(json, "Products", products);
    cJSON* const infos = cJSON_CreateObject();
    for (const auto& [key, value] : host.FileTransferInfos)
    {
        Add(infos, key.c_str(), value);
    }
    cJSON_AddItemToObject(json, "FileTransferInfos", infos);
    return json;
}

void Limit::Log(const char* channel, const char* text, const char* more)
{
    if (file < 0)
    {
        return;
    }
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (now.tv_sec != second)
    {
        std::tm local{};
        localtime_r(&now.tv_sec, &local);
        std::strftime(date, sizeof date, "%d/%m/%Y %H:%M:%S", &local);
        second = now.tv_sec;
    }
    char line[512];
    const int length =
        std::snprintf(line, sizeof line, "|%s.%03ld|%18.6f|%-40s|S|           |%s%s\n", date, now.tv_nsec / 1'000'000,
                      static_cast<double>(Now() / 1000) / 1e6, channel, text, more);
    if (write(file, line, static_cast<std::size_t>(length)) != length)
    {
        std::abort(); // a figure without its lines would be no limit
    }
}
} // namespace Benchmarks
