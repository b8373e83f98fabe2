#pragma once

#include "DiscoveryServer.ExtC.h"
#include "SharedLibrary.h"

#include <string>

namespace Zent::Discovery::Console
{
/// The library's sixteen functions, found in the shared library at run time.
class DiscoveryLibrary final
{
public:
    /// @throws std::runtime_error when the library cannot be loaded or lacks a function.
    explicit DiscoveryLibrary(const std::string& path);

    /// The library's text for a result code.
    std::string ErrorText(int code) const;

    decltype(&::Initialize) Initialize;
    decltype(&::Terminate) Terminate;
    decltype(&::StartServer) StartServer;
    decltype(&::StopServer) StopServer;
    decltype(&::GetErrorMessage) GetErrorMessage;
    decltype(&::Discover) Discover;
    decltype(&::ChangeClientsIPConfigurations) ChangeClientsIPConfigurations;
    decltype(&::ChangeClientsHostName) ChangeClientsHostName;
    decltype(&::ChangeClientsHostNameWithIP) ChangeClientsHostNameWithIP;
    decltype(&::RefreshClient) RefreshClient;
    decltype(&::ReachClient) ReachClient;
    decltype(&::SetClientSignatureReceivedEventCallBack) SetClientSignatureReceivedEventCallBack;
    decltype(&::SetHelloMessageReceivedEventCallBack) SetHelloMessageReceivedEventCallBack;
    decltype(&::SetByeMessageReceivedEventCallBack) SetByeMessageReceivedEventCallBack;
    decltype(&::InitBroadcastProvider) InitBroadcastProvider;
    decltype(&::SetMinCompatibleVersion) SetMinCompatibleVersion;

private:
    template <class TResult, class... TArguments>
    void Bind(TResult(DISCOVERY_EXTC_CALL*& function)(TArguments...), const char* name);

    const SharedLibrary library;
};
} // namespace Zent::Discovery::Console
