#pragma once

#include "DiscoveryServer.ExtC.h"

#include <cstdint>

/// What stands behind the exported functions: converts the arguments, calls the server and guards the call. Each
/// function has the name, the arguments and the result of its export, whose documentation is in the C header.
namespace Zent::Discovery::ExtC
{
std::int32_t Initialize(const char* logPath, std::int32_t logLevel);
std::int32_t Terminate();
std::int32_t StartServer();
std::int32_t StopServer();
char* GetErrorMessage(std::int32_t errorCode);
std::int32_t Discover();
std::int32_t ChangeClientsIPConfigurations(const char* nicConfigsJson);
std::int32_t ChangeClientsHostName(const char* newHostName, const char* macAddress);
std::int32_t ChangeClientsHostNameWithIP(const char* newHostName, const char* ipAddress);
std::int32_t RefreshClient(const char* macAddress);
std::int32_t ReachClient(const char* ipAddress);
std::int32_t SetClientSignatureReceivedEventCallBack(ClientSignatureReceivedEventCallBack callback);
std::int32_t SetHelloMessageReceivedEventCallBack(HelloMessageReceivedEventCallBack callback);
std::int32_t SetByeMessageReceivedEventCallBack(ByeMessageReceivedEventCallBack callback);
std::int32_t InitBroadcastProvider(const char* addressesJson);
std::int32_t SetMinCompatibleVersion(const char* version);
} // namespace Zent::Discovery::ExtC
