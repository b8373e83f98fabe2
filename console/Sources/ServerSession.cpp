#include "ServerSession.h"

#include "CallFailure.h"
#include "Json/JSONStringer.h"

#include <atomic>
#include <chrono>
#include <new>

using Nfx::System::String;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Utils::Json::JSONStringer;

namespace Zent::Discovery::Console
{
namespace
{
/// Where the callbacks put messages: set while the callbacks are, and read on the library's thread.
std::atomic<MessageQueue*> receivingQueue{nullptr};

template <DeviceMessage::MessageKind Kind>
void DISCOVERY_EXTC_CALL Receive(const char* hostJson) noexcept
{
    try
    {
        receivingQueue.load()->Push({Kind, hostJson, std::chrono::system_clock::now()});
    }
    catch (const std::bad_alloc&)
    {
        // Nothing may leave a callback; the message is lost, as it is when the queue is full.
    }
}

std::string AddressList(const std::vector<std::string>& addresses)
{
    JSONStringer stringer;
    stringer.Array();
    for (const std::string& address : addresses)
    {
        stringer.Value(String(std::string_view(address)));
    }
    stringer.EndArray();
    return std::string(stringer.ToString().View());
}
} // namespace

ServerSession::ServerSession(const DiscoveryLibrary& library, const Options& options, MessageQueue& messages)
    : library(library)
    , messages(messages)
{
    Check(("Initialize with the log " + options.LogFile).c_str(),
          library.Initialize(options.LogFile.c_str(), options.LogLevel));
    isOpen = true;
    try
    {
        Start(options);
    }
    catch (...)
    {
        library.Terminate();
        throw;
    }
}

ServerSession::~ServerSession()
{
    if (isOpen)
    {
        library.StopServer();
        library.Terminate();
    }
}

void ServerSession::Start(const Options& options)
{
    receivingQueue = &messages;
    Check("SetClientSignatureReceivedEventCallBack",
          library.SetClientSignatureReceivedEventCallBack(&Receive<DeviceMessage::MessageKind::Signature>));
    Check("SetHelloMessageReceivedEventCallBack",
          library.SetHelloMessageReceivedEventCallBack(&Receive<DeviceMessage::MessageKind::Hello>));
    Check("SetByeMessageReceivedEventCallBack",
          library.SetByeMessageReceivedEventCallBack(&Receive<DeviceMessage::MessageKind::Bye>));
    if (options.MinimumVersion)
    {
        Check("SetMinCompatibleVersion", library.SetMinCompatibleVersion(options.MinimumVersion->c_str()));
    }
    Check("StartServer", library.StartServer());
    if (!options.LocalAddresses.empty())
    {
        Check("InitBroadcastProvider", library.InitBroadcastProvider(AddressList(options.LocalAddresses).c_str()));
    }
}

void ServerSession::Close()
{
    const int stopResult = library.StopServer();
    const int terminationResult = library.Terminate(); // also when the server did not stop: it closes the log
    isOpen = false;
    Check("StopServer", stopResult);
    Check("Terminate", terminationResult);
}

MessageQueue& ServerSession::Messages() const
{
    return messages;
}

void ServerSession::Discover()
{
    Check("Discover", library.Discover());
}

void ServerSession::RefreshClient(const std::string& macAddress)
{
    Check("RefreshClient", library.RefreshClient(macAddress.c_str()));
}

void ServerSession::ReachClient(const std::string& ipAddress)
{
    Check("ReachClient", library.ReachClient(ipAddress.c_str()));
}

void ServerSession::ChangeHostName(const std::string& newHostName, const std::string& macAddress)
{
    Check("ChangeClientsHostName", library.ChangeClientsHostName(newHostName.c_str(), macAddress.c_str()));
}

void ServerSession::ChangeHostNameWithIP(const std::string& newHostName, const std::string& ipAddress)
{
    Check("ChangeClientsHostNameWithIP", library.ChangeClientsHostNameWithIP(newHostName.c_str(), ipAddress.c_str()));
}

void ServerSession::ChangeIPConfigurations(const std::string& nicConfigsJson)
{
    Check("ChangeClientsIPConfigurations", library.ChangeClientsIPConfigurations(nicConfigsJson.c_str()));
}

void ServerSession::Check(const char* function, int code) const
{
    if (code != 0)
    {
        throw CallFailure(function, code, library.ErrorText(code));
    }
}
} // namespace Zent::Discovery::Console
