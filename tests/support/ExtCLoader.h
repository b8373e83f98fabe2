#ifndef TESTS_SUPPORT_EXTC_LOADER_H
#define TESTS_SUPPORT_EXTC_LOADER_H

#include "DiscoveryServer.ExtC.h"

#ifdef __cplusplus
extern "C"
{
#endif

    /* The library's functions as a host finds them at run time. */
    typedef struct ExtCFunctions
    {
        int(DISCOVERY_EXTC_CALL* Initialize)(const char* logPath, int logLevel);
        int(DISCOVERY_EXTC_CALL* Terminate)(void);
        int(DISCOVERY_EXTC_CALL* StartServer)(void);
        int(DISCOVERY_EXTC_CALL* StopServer)(void);
        char*(DISCOVERY_EXTC_CALL* GetErrorMessage)(int errorCode);
        int(DISCOVERY_EXTC_CALL* Discover)(void);
        int(DISCOVERY_EXTC_CALL* ChangeClientsIPConfigurations)(const char* nicConfigsJson);
        int(DISCOVERY_EXTC_CALL* ChangeClientsHostName)(const char* newHostName, const char* macAddress);
        int(DISCOVERY_EXTC_CALL* ChangeClientsHostNameWithIP)(const char* newHostName, const char* ipAddress);
        int(DISCOVERY_EXTC_CALL* RefreshClient)(const char* macAddress);
        int(DISCOVERY_EXTC_CALL* ReachClient)(const char* ipAddress);
        int(DISCOVERY_EXTC_CALL* SetClientSignatureReceivedEventCallBack)(
            ClientSignatureReceivedEventCallBack callback);
        int(DISCOVERY_EXTC_CALL* SetHelloMessageReceivedEventCallBack)(HelloMessageReceivedEventCallBack callback);
        int(DISCOVERY_EXTC_CALL* SetByeMessageReceivedEventCallBack)(ByeMessageReceivedEventCallBack callback);
        int(DISCOVERY_EXTC_CALL* InitBroadcastProvider)(const char* addressesJson);
        int(DISCOVERY_EXTC_CALL* SetMinCompatibleVersion)(const char* version);
    } ExtCFunctions;

    /* Loads the library and looks up all sixteen functions; 0 when anything is missing, with a line on stderr. */
    int LoadExtC(const char* path, ExtCFunctions* functions);

    /* Unloads what LoadExtC has loaded. */
    void UnloadExtC(void);

    /* Frees the result of GetErrorMessage as the platform demands. */
    void FreeErrorMessage(char* message);

#ifdef __cplusplus
}
#endif

#endif
