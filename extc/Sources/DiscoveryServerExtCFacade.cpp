#include "DiscoveryServerExtCFacade.h"

#include "Discovery/BroadcastProviderWin32.h"
#include "Discovery/DiscoveryLogger.h"
#include "Discovery/ServiceThread.h"
#include "ExceptionGuard.h"
#include "ExtCCallBacks.h"
#include "HostEventRelay.h"
#include "Json/JSONArray.h"
#include "NICsConfigsListJsonSerializer.h"
#include "Server/DiscoveryServerFacade.h"
#include "Server/MinimumCompatibleVersion.h"
#include "system/Memory.h"

#include <cstring>

namespace Zent::Discovery::ExtC
{
using Nfx::System::Error;
using Nfx::System::Exception;
using Nfx::System::InvalidOperationException;
using Nfx::System::Memory;
using Nfx::System::OutOfMemoryException;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::Version;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Net::IPAddress;
using Server::DiscoveryServerFacade;
using Server::HostEventKind;
using Server::MinimumCompatibleVersion;
using Server::NICsConfigsListJsonSerializer;
using Zent::Utils::Json::JSONArray;

namespace
{
namespace ErrorCodes = Nfx::System::ErrorCodes;

const char SourceName[] = "extc/Sources/DiscoveryServerExtCFacade";

/// As long as a document may be. The host's texts are copied, logged and sent, so that a longer one takes memory for
/// nothing.
constexpr std::size_t LargestText = std::size_t{16} * 1024 * 1024; // bytes

/// A copy of an argument.
String TextOf(const char* argument)
{
    if (argument != nullptr && std::memchr(argument, '\0', LargestText + 1) == nullptr)
    {
        throw Exception(ErrorCodes::InvalidFormat, "text argument of more than 16777216 bytes", SourceName, __LINE__);
    }
    return String(argument);
}

/// For operations that wait for the service's threads: on one of these the wait would never end.
void RefuseOnServiceThread(const char* operation)
{
    if (ServiceThread::IsCurrent())
    {
        throw InvalidOperationException(String(operation) + " must not be called within a callback.", SourceName,
                                        __LINE__);
    }
}

void StopBody()
{
    DiscoveryServerFacade::Instance()->Server().StopIfRunning();
}

SmartPointer<BroadcastProviderWin32::AddressList> ParseAddresses(const String& text)
{
    const JSONArray array(text);
    SmartPointer<BroadcastProviderWin32::AddressList> addresses(new BroadcastProviderWin32::AddressList());
    for (std::int32_t index = 0; index < array.Length(); ++index)
    {
        addresses->Add(SmartPointer<IPAddress>(new IPAddress(IPAddress::Parse(array.GetString(index)))));
    }
    return addresses;
}

std::int32_t SetCallBack(const HostEventKind& kind, ExtCCallBacks::CallBack callback)
{
    return ExceptionGuard::Run([&] { ExtCCallBacks::Instance()->Of(kind) = callback; });
}

/// A copy that belongs to the host application.
char* CopyForHost(const String& text)
{
    const std::size_t size = text.Length() + 1;
    char* const copy = static_cast<char*>(Memory::AllocateForHost(size));
    if (copy == nullptr)
    {
        throw OutOfMemoryException(SourceName, __LINE__);
    }
    std::memcpy(copy, text.CString(), size);
    return copy;
}
} // namespace

std::int32_t Initialize(const char* logPath, std::int32_t logLevel)
{
    return ExceptionGuard::Run([&] {
        RefuseOnServiceThread("Initialize");
        if (ExtCCallBacks::Exists())
        {
            throw InvalidOperationException("DiscoveryServerFacade instance already initialized!", SourceName,
                                            __LINE__);
        }
        LogStreamLevel level(LogStreamLevel::None);
        level = logLevel;
        const SmartPointer<ExtCCallBacks> callBacks(new ExtCCallBacks());
        DiscoveryServerFacade::InstanceThatCanStart();
        DiscoveryLogger::GetInstance().Init(TextOf(logPath), level); // the last step that can fail
        ExtCCallBacks::Install(callBacks);
    });
}

std::int32_t Terminate()
{
    return ExceptionGuard::Run([] {
        RefuseOnServiceThread("Terminate");
        StopBody();
        if (ExtCCallBacks::Exists())
        {
            DiscoveryServerFacade::Destroy();
            ExtCCallBacks::Destroy();
            DiscoveryLogger::GetInstance().Close();
        }
    });
}

std::int32_t StartServer()
{
    return ExceptionGuard::Run([] {
        RefuseOnServiceThread("StartServer");
        DiscoveryServerFacade::Instance()->Server().Start(HostEventRelay::Relays());
    });
}

std::int32_t StopServer()
{
    return ExceptionGuard::Run([] {
        RefuseOnServiceThread("StopServer");
        StopBody();
    });
}

char* GetErrorMessage(std::int32_t errorCode)
{
    char* message = nullptr;
    const std::int32_t failure =
        ExceptionGuard::RunSilently([&] { message = CopyForHost(Error(errorCode).ToString()); });
    if (failure != ErrorCodes::None)
    {
        static const char Fallback[] = "Unable to retrieve error message!";
        message = static_cast<char*>(Memory::AllocateForHost(sizeof Fallback));
        if (message != nullptr)
        {
            std::memcpy(message, Fallback, sizeof Fallback);
        }
    }
    return message;
}

std::int32_t Discover()
{
    return ExceptionGuard::Run([] { DiscoveryServerFacade::Instance()->Server().Discover(); });
}

std::int32_t ChangeClientsIPConfigurations(const char* nicConfigsJson)
{
    return ExceptionGuard::Run([&] {
        const auto configs = NICsConfigsListJsonSerializer().Deserialize(TextOf(nicConfigsJson));
        DiscoveryServerFacade::Instance()->Server().ChangeIPConfigurations(configs);
    });
}

std::int32_t ChangeClientsHostName(const char* newHostName, const char* macAddress)
{
    return ExceptionGuard::Run([&] {
        const String name = TextOf(newHostName);
        const MACAddress address = MACAddress::Parse(TextOf(macAddress));
        DiscoveryServerFacade::Instance()->Server().ChangeHostName(name, address);
    });
}

std::int32_t ChangeClientsHostNameWithIP(const char* newHostName, const char* ipAddress)
{
    return ExceptionGuard::Run([&] {
        const String name = TextOf(newHostName);
        const IPAddress address = IPAddress::Parse(TextOf(ipAddress));
        DiscoveryServerFacade::Instance()->Server().ChangeHostName(name, address);
    });
}

std::int32_t RefreshClient(const char* macAddress)
{
    return ExceptionGuard::Run([&] {
        const MACAddress address = MACAddress::Parse(TextOf(macAddress));
        DiscoveryServerFacade::Instance()->Server().RefreshClient(address);
    });
}

std::int32_t ReachClient(const char* ipAddress)
{
    return ExceptionGuard::Run([&] {
        const IPAddress address = IPAddress::Parse(TextOf(ipAddress));
        DiscoveryServerFacade::Instance()->Server().ReachClient(address);
    });
}

std::int32_t SetClientSignatureReceivedEventCallBack(ClientSignatureReceivedEventCallBack callback)
{
    return SetCallBack(HostEventKind::ClientSignature, callback);
}

std::int32_t SetHelloMessageReceivedEventCallBack(HelloMessageReceivedEventCallBack callback)
{
    return SetCallBack(HostEventKind::Hello, callback);
}

std::int32_t SetByeMessageReceivedEventCallBack(ByeMessageReceivedEventCallBack callback)
{
    return SetCallBack(HostEventKind::Bye, callback);
}

std::int32_t InitBroadcastProvider(const char* addressesJson)
{
    return ExceptionGuard::Run([&] {
        const SmartPointer<IBroadcastProvider> provider(
            new BroadcastProviderWin32(ParseAddresses(TextOf(addressesJson))));
        DiscoveryServerFacade::Instance()->Server().SetBroadcastProvider(provider);
    });
}

std::int32_t SetMinCompatibleVersion(const char* version)
{
    return ExceptionGuard::Run([&] { MinimumCompatibleVersion::Set(Version::Parse(TextOf(version))); });
}
} // namespace Zent::Discovery::ExtC
