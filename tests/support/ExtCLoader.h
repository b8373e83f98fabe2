#ifndef TESTS_SUPPORT_EXTC_LOADER_H
#define TESTS_SUPPORT_EXTC_LOADER_H

#include "DiscoveryServer.ExtC.h"

#ifdef __cplusplus
extern "C"
{
#endif

    /* The functions, with the sizes of their arguments in bytes on 32-bit Windows. */
#define EXTC_FUNCTIONS(X)                                                                                              \
    X(Initialize, 8)                                                                                                   \
    X(Terminate, 0)                                                                                                    \
    X(StartServer, 0)                                                                                                  \
    X(StopServer, 0)                                                                                                   \
    X(GetErrorMessage, 4)                                                                                              \
    X(Discover, 0)                                                                                                     \
    X(ChangeClientsIPConfigurations, 4)                                                                                \
    X(ChangeClientsHostName, 8)                                                                                        \
    X(ChangeClientsHostNameWithIP, 8)                                                                                  \
    X(RefreshClient, 4)                                                                                                \
    X(ReachClient, 4)                                                                                                  \
    X(SetClientSignatureReceivedEventCallBack, 4)                                                                      \
    X(SetHelloMessageReceivedEventCallBack, 4)                                                                         \
    X(SetByeMessageReceivedEventCallBack, 4)                                                                           \
    X(InitBroadcastProvider, 4)                                                                                        \
    X(SetMinCompatibleVersion, 4)

#define EXTC_TYPE(NAME, BYTES) typedef __typeof__(&NAME) NAME##Function;
    EXTC_FUNCTIONS(EXTC_TYPE)
#undef EXTC_TYPE

    /* The functions as a host finds them at run time. */
    typedef struct ExtCFunctions
    {
#define EXTC_MEMBER(NAME, BYTES) NAME##Function NAME;
        EXTC_FUNCTIONS(EXTC_MEMBER)
#undef EXTC_MEMBER
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
