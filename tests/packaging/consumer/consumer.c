/* A host program as a user of the packages would build it, in C or C++: prints the signatures of the devices of this
   machine until its input ends. Its argument is the log's path. */

#include <DiscoveryServer.ExtC.h>
#include <stdio.h>

static void DISCOVERY_EXTC_CALL OnSignature(const char* hostJson)
{
    printf("%s\n", hostJson);
    fflush(stdout);
}

int main(int argc, char* argv[])
{
    if (argc != 2 || Initialize(argv[1], DiscoveryLogStandard) != 0 ||
        SetClientSignatureReceivedEventCallBack(OnSignature) != 0 || StartServer() != 0 ||
        InitBroadcastProvider("[\"127.0.0.1\"]") != 0 || Discover() != 0)
    {
        return 1;
    }
    while (getchar() != EOF)
    {
    }
    return Terminate();
}
