#include "DiscoveryServer.ExtC.h"

#include <stdio.h>

static void DISCOVERY_EXTC_CALL OnSignature(const char* hostJson)
{
    printf("%s\n", hostJson);
    fflush(stdout);
}

int main(void)
{
    if (Initialize("discovery.log", DiscoveryLogStandard) != 0 || StartServer() != 0)
        return 1;
    SetClientSignatureReceivedEventCallBack(OnSignature);
    InitBroadcastProvider("[\"127.0.0.1\"]"); /* stays on this machine; leave it out to ask the local network */
    puts("Press Enter to end.");
    Discover();
    getchar();
    return Terminate();
}
