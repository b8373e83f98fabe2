#include "DiscoveryLibrary.h"

#include "HostPlatform.h"

#include <memory>

namespace Zent::Discovery::Console
{
DiscoveryLibrary::DiscoveryLibrary(const std::string& path)
    : library(path)
{
    Bind(Initialize, "Initialize");
    Bind(Terminate, "Terminate");
    Bind(StartServer, "StartServer");
    Bind(StopServer, "StopServer");
    Bind(GetErrorMessage, "GetErrorMessage");
    Bind(Discover, "Discover");
    Bind(ChangeClientsIPConfigurations, "ChangeClientsIPConfigurations");
    Bind(ChangeClientsHostName, "ChangeClientsHostName");
    Bind(ChangeClientsHostNameWithIP, "ChangeClientsHostNameWithIP");
    Bind(RefreshClient, "RefreshClient");
    Bind(ReachClient, "ReachClient");
    Bind(SetClientSignatureReceivedEventCallBack, "SetClientSignatureReceivedEventCallBack");
    Bind(SetHelloMessageReceivedEventCallBack, "SetHelloMessageReceivedEventCallBack");
    Bind(SetByeMessageReceivedEventCallBack, "SetByeMessageReceivedEventCallBack");
    Bind(InitBroadcastProvider, "InitBroadcastProvider");
    Bind(SetMinCompatibleVersion, "SetMinCompatibleVersion");
}

std::string DiscoveryLibrary::ErrorText(int code) const
{
    const std::unique_ptr<char, decltype(&HostPlatform::FreeErrorText)> text(GetErrorMessage(code),
                                                                             &HostPlatform::FreeErrorText);
    return text == nullptr ? "" : text.get();
}

template <class TResult, class... TArguments>
void DiscoveryLibrary::Bind(TResult(DISCOVERY_EXTC_CALL*& function)(TArguments...), const char* name)
{
    // Every argument takes whole words of the stack; all of these are exactly one.
    constexpr std::size_t ArgumentBytes = (std::size_t{0} + ... + sizeof(TArguments));
    function = reinterpret_cast<TResult(DISCOVERY_EXTC_CALL*)(TArguments...)>(library.Find(name, ArgumentBytes));
}
} // namespace Zent::Discovery::Console
