/* A host in plain C, built so that no exception could pass through it, calls each of the sixteen functions in the usual
   order; any surprise ends with status 1. */
#include "DiscoveryServer.ExtC.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#if defined(_WIN32)
#include <objbase.h>
#define FREE_MESSAGE CoTaskMemFree
#else
#define FREE_MESSAGE free
#endif

static int surprises;

static void Expect(int expected, int actual, const char* what)
{
    if (actual != expected)
    {
        char* message = GetErrorMessage(actual);
        fprintf(stderr, "%s: 0x%08X (%s) instead of 0x%08X\n", what, (unsigned)actual, message, (unsigned)expected);
        FREE_MESSAGE(message);
        ++surprises;
    }
}

static void DISCOVERY_EXTC_CALL Ignore(const char* hostJson)
{
    (void)hostJson;
}

/* Texts that are too large are refused whatever they stand for. */
static void PassHugeTexts(void)
{
    const size_t size = 300u * 1024 * 1024;
    const int invalidFormat = (int)0xC0090114u;
    char* text = malloc(size + 1);
    if (text == NULL)
    {
        fprintf(stderr, "no memory for a huge text\n");
        ++surprises;
        return;
    }
    memset(text, '1', size);
    text[size] = '\0';
    Expect(invalidFormat, RefreshClient(text), "RefreshClient with a huge text");
    Expect(invalidFormat, ReachClient(text), "ReachClient with a huge text");
    Expect(invalidFormat, ChangeClientsHostName(text, "00:1A:2B:3C:4D:5E"), "huge name by MAC address");
    Expect(invalidFormat, ChangeClientsHostNameWithIP(text, "127.0.0.1"), "huge name by IP address");
    Expect(invalidFormat, ChangeClientsHostName("press-4", text), "huge MAC address");
    Expect(invalidFormat, ChangeClientsHostNameWithIP("press-4", text), "huge IP address");
    Expect(invalidFormat, SetMinCompatibleVersion(text), "huge version");
    memset(text, '[', size);
    Expect(invalidFormat, ChangeClientsIPConfigurations(text), "huge configurations");
    Expect(invalidFormat, InitBroadcastProvider(text), "huge addresses");
    free(text);
}

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        return 2;
    }
    const int invalidOperation = 30;
    const int nullPointer = 41;
    const int invalidFormat = (int)0xC0090114u;

    Expect(invalidOperation, SetHelloMessageReceivedEventCallBack(Ignore), "callback before Initialize");
    Expect(0, StopServer(), "StopServer before anything");
    Expect(0, Initialize(argv[1], DiscoveryLogDebug), "Initialize");
    Expect(invalidOperation, Initialize(argv[1], DiscoveryLogDebug), "second Initialize");
    Expect(0, SetClientSignatureReceivedEventCallBack(Ignore), "signature callback");
    Expect(0, SetHelloMessageReceivedEventCallBack(Ignore), "hello callback");
    Expect(0, SetByeMessageReceivedEventCallBack(NULL), "no bye callback");
    Expect(0, SetMinCompatibleVersion("1.0"), "SetMinCompatibleVersion");
    Expect(nullPointer, Discover(), "Discover before StartServer");
    Expect(0, InitBroadcastProvider("[\"127.0.0.1\"]"), "InitBroadcastProvider before StartServer");
    Expect(0, StartServer(), "StartServer");
    Expect(0, StartServer(), "second StartServer");
    Expect(0, InitBroadcastProvider("[\"127.0.0.1\"]"), "InitBroadcastProvider");
    Expect(0, Discover(), "Discover");
    Expect(0, RefreshClient("00:1a:2b:3c:4d:5e"), "RefreshClient");
    Expect(invalidFormat, RefreshClient("00:1a:2b:3c:4d"), "RefreshClient with five parts");
    Expect(0, ReachClient("127.0.0.1"), "ReachClient");
    Expect(0, ChangeClientsHostName("press-4", "00:1A:2B:3C:4D:5E"), "ChangeClientsHostName");
    Expect(0, ChangeClientsHostNameWithIP("press-4", "127.0.0.1"), "ChangeClientsHostNameWithIP");
    Expect(0, ChangeClientsIPConfigurations("[]"), "ChangeClientsIPConfigurations");
    PassHugeTexts();
    Expect(0, StopServer(), "StopServer");
    Expect(nullPointer, Discover(), "Discover after StopServer");
    Expect(0, Terminate(), "Terminate");
    Expect(0, Terminate(), "second Terminate");

    char* message = GetErrorMessage(invalidFormat);
    if (message == NULL || strcmp(message, "Invalid Format") != 0)
    {
        fprintf(stderr, "GetErrorMessage: %s\n", message != NULL ? message : "null");
        ++surprises;
    }
    FREE_MESSAGE(message);
    return surprises == 0 ? 0 : 1;
}
