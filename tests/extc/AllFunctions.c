/* A host in plain C, built so that no exception could pass through it, calls each of the sixteen functions in the usual
   order; any surprise ends with status 1. */
#include "support/ExtCLoader.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static ExtCFunctions server;
static int surprises;

static void Expect(int expected, int actual, const char* what)
{
    if (actual != expected)
    {
        char* message = server.GetErrorMessage(actual);
        fprintf(stderr, "%s: 0x%08X (%s) instead of 0x%08X\n", what, (unsigned)actual, message, (unsigned)expected);
        FreeErrorMessage(message);
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
    Expect(invalidFormat, server.RefreshClient(text), "RefreshClient with a huge text");
    Expect(invalidFormat, server.ReachClient(text), "ReachClient with a huge text");
    Expect(invalidFormat, server.ChangeClientsHostName(text, "00:1A:2B:3C:4D:5E"), "huge name by MAC address");
    Expect(invalidFormat, server.ChangeClientsHostNameWithIP(text, "127.0.0.1"), "huge name by IP address");
    Expect(invalidFormat, server.ChangeClientsHostName("press-4", text), "huge MAC address");
    Expect(invalidFormat, server.ChangeClientsHostNameWithIP("press-4", text), "huge IP address");
    Expect(invalidFormat, server.SetMinCompatibleVersion(text), "huge version");
    memset(text, '[', size);
    Expect(invalidFormat, server.ChangeClientsIPConfigurations(text), "huge configurations");
    Expect(invalidFormat, server.InitBroadcastProvider(text), "huge addresses");
    free(text);
}

int main(int argc, char** argv)
{
    if (argc != 3 || !LoadExtC(argv[1], &server))
    {
        return 2;
    }
    const int invalidOperation = 30;
    const int nullPointer = 41;
    const int invalidFormat = (int)0xC0090114u;

    Expect(invalidOperation, server.SetHelloMessageReceivedEventCallBack(Ignore), "callback before Initialize");
    Expect(0, server.StopServer(), "StopServer before anything");
    Expect(0, server.Initialize(argv[2], DiscoveryLogDebug), "Initialize");
    Expect(invalidOperation, server.Initialize(argv[2], DiscoveryLogDebug), "second Initialize");
    Expect(0, server.SetClientSignatureReceivedEventCallBack(Ignore), "signature callback");
    Expect(0, server.SetHelloMessageReceivedEventCallBack(Ignore), "hello callback");
    Expect(0, server.SetByeMessageReceivedEventCallBack(NULL), "no bye callback");
    Expect(0, server.SetMinCompatibleVersion("1.0"), "SetMinCompatibleVersion");
    Expect(nullPointer, server.Discover(), "Discover before StartServer");
    Expect(0, server.InitBroadcastProvider("[\"127.0.0.1\"]"), "InitBroadcastProvider before StartServer");
    Expect(0, server.StartServer(), "StartServer");
    Expect(0, server.StartServer(), "second StartServer");
    Expect(0, server.InitBroadcastProvider("[\"127.0.0.1\"]"), "InitBroadcastProvider");
    Expect(0, server.Discover(), "Discover");
    Expect(0, server.RefreshClient("00:1a:2b:3c:4d:5e"), "RefreshClient");
    Expect(invalidFormat, server.RefreshClient("00:1a:2b:3c:4d"), "RefreshClient with five parts");
    Expect(0, server.ReachClient("127.0.0.1"), "ReachClient");
    Expect(0, server.ChangeClientsHostName("press-4", "00:1A:2B:3C:4D:5E"), "ChangeClientsHostName");
    Expect(0, server.ChangeClientsHostNameWithIP("press-4", "127.0.0.1"), "ChangeClientsHostNameWithIP");
    Expect(0, server.ChangeClientsIPConfigurations("[]"), "ChangeClientsIPConfigurations");
    PassHugeTexts();
    Expect(0, server.StopServer(), "StopServer");
    Expect(nullPointer, server.Discover(), "Discover after StopServer");
    Expect(0, server.Terminate(), "Terminate");
    Expect(0, server.Terminate(), "second Terminate");

    char* message = server.GetErrorMessage(invalidFormat);
    if (message == NULL || strcmp(message, "Invalid Format") != 0)
    {
        fprintf(stderr, "GetErrorMessage: %s\n", message != NULL ? message : "null");
        ++surprises;
    }
    FreeErrorMessage(message);
    UnloadExtC();
    return surprises == 0 ? 0 : 1;
}
