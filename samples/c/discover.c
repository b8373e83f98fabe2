#include "DiscoveryServer.ExtC.h"

#include <stdio.h>
#include <stdlib.h>

#ifdef _WIN32
#include <objbase.h>
#define FREE_TEXT CoTaskMemFree
#else
#define FREE_TEXT free
#endif

/* Runs on a thread of the library; the text is gone when it returns. */
static void DISCOVERY_EXTC_CALL OnSignature(const char* hostJson)
{
    printf("%s\n", hostJson);
    fflush(stdout);
}

static int Succeeded(const char* function, int code)
{
    if (code != 0)
    {
        char* const text = GetErrorMessage(code); /* ours to free */
        fprintf(stderr, "%s failed: %s (code 0x%08X)\n", function, text == NULL ? "" : text, (unsigned)code);
        FREE_TEXT(text);
    }
    return code == 0;
}

int main(void)
{
    int status = EXIT_FAILURE;
    if (!Succeeded("Initialize", Initialize("discovery.log", DiscoveryLogStandard)))
        return status;
    /* The address stays on this machine; leave InitBroadcastProvider out to ask the local network. */
    if (Succeeded("SetClientSignatureReceivedEventCallBack", SetClientSignatureReceivedEventCallBack(OnSignature)) &&
        Succeeded("StartServer", StartServer()) &&
        Succeeded("InitBroadcastProvider", InitBroadcastProvider("[\"127.0.0.1\"]")))
    {
        puts("Press Enter to end.");
        if (Succeeded("Discover", Discover()))
        {
            getchar();
            status = EXIT_SUCCESS;
        }
    }
    return Succeeded("Terminate", Terminate()) ? status : EXIT_FAILURE;
}
