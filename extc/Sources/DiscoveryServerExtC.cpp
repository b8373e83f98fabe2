#include "DiscoveryServer.ExtC.h"
#include "DiscoveryServerExtCFacade.h"

#include <string_view>

namespace ExtC = Zent::Discovery::ExtC;

#define NFX_TEXT_OF(value) #value
#define NFX_VERSION_TEXT(major, minor, patch) NFX_TEXT_OF(major) "." NFX_TEXT_OF(minor) "." NFX_TEXT_OF(patch)
static_assert(std::string_view(NFX_VERSION) == NFX_VERSION_TEXT(DISCOVERY_EXTC_VERSION_MAJOR,
                                                                DISCOVERY_EXTC_VERSION_MINOR,
                                                                DISCOVERY_EXTC_VERSION_PATCH),
              "the header has another version than the project");

extern "C"
{
    int DISCOVERY_EXTC_CALL Initialize(const char* logPath, int logLevel)
    {
        return ExtC::Initialize(logPath, logLevel);
    }

    int DISCOVERY_EXTC_CALL Terminate(void)
    {
        return ExtC::Terminate();
    }

    int DISCOVERY_EXTC_CALL StartServer(void)
    {
        return ExtC::StartServer();
    }

    int DISCOVERY_EXTC_CALL StopServer(void)
    {
        return ExtC::StopServer();
    }

    char* DISCOVERY_EXTC_CALL GetErrorMessage(int errorCode)
    {
        return ExtC::GetErrorMessage(errorCode);
    }

    int DISCOVERY_EXTC_CALL Discover(void)
    {
        return ExtC::Discover();
    }

    int DISCOVERY_EXTC_CALL ChangeClientsIPConfigurations(const char* nicConfigsJson)
    {
        return ExtC::ChangeClientsIPConfigurations(nicConfigsJson);
    }

    int DISCOVERY_EXTC_CALL ChangeClientsHostName(const char* newHostName, const char* macAddress)
    {
        return ExtC::ChangeClientsHostName(newHostName, macAddress);
    }

    int DISCOVERY_EXTC_CALL ChangeClientsHostNameWithIP(const char* newHostName, const char* ipAddress)
    {
        return ExtC::ChangeClientsHostNameWithIP(newHostName, ipAddress);
    }

    int DISCOVERY_EXTC_CALL RefreshClient(const char* macAddress)
    {
        return ExtC::RefreshClient(macAddress);
    }

    int DISCOVERY_EXTC_CALL ReachClient(const char* ipAddress)
    {
        return ExtC::ReachClient(ipAddress);
    }

    int DISCOVERY_EXTC_CALL SetClientSignatureReceivedEventCallBack(ClientSignatureReceivedEventCallBack callback)
    {
        return ExtC::SetClientSignatureReceivedEventCallBack(callback);
    }

    int DISCOVERY_EXTC_CALL SetHelloMessageReceivedEventCallBack(HelloMessageReceivedEventCallBack callback)
    {
        return ExtC::SetHelloMessageReceivedEventCallBack(callback);
    }

    int DISCOVERY_EXTC_CALL SetByeMessageReceivedEventCallBack(ByeMessageReceivedEventCallBack callback)
    {
        return ExtC::SetByeMessageReceivedEventCallBack(callback);
    }

    int DISCOVERY_EXTC_CALL InitBroadcastProvider(const char* addressesJson)
    {
        return ExtC::InitBroadcastProvider(addressesJson);
    }

    int DISCOVERY_EXTC_CALL SetMinCompatibleVersion(const char* version)
    {
        return ExtC::SetMinCompatibleVersion(version);
    }
}
