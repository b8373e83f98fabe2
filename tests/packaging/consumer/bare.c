/* A host program as Microsoft's tools build it, without their C runtime. Its exit status is 0, or the number of the
   step that failed. */

#include <DiscoveryInventory.h>
#include <DiscoveryServer.ExtC.h>

#define FUNCTION(name) ((void (*)(void))name)

/* Every function of both libraries, so that the linker looks for every name. */
static void (*const volatile Functions[])(void) = {
    FUNCTION(ChangeClientsHostName),
    FUNCTION(ChangeClientsHostNameWithIP),
    FUNCTION(ChangeClientsIPConfigurations),
    FUNCTION(Discover),
    FUNCTION(GetErrorMessage),
    FUNCTION(InitBroadcastProvider),
    FUNCTION(Initialize),
    FUNCTION(ReachClient),
    FUNCTION(RefreshClient),
    FUNCTION(SetByeMessageReceivedEventCallBack),
    FUNCTION(SetClientSignatureReceivedEventCallBack),
    FUNCTION(SetHelloMessageReceivedEventCallBack),
    FUNCTION(SetMinCompatibleVersion),
    FUNCTION(StartServer),
    FUNCTION(StopServer),
    FUNCTION(Terminate),
    FUNCTION(DiscoveryInventoryAdvanceTime),
    FUNCTION(DiscoveryInventoryAnswerWish),
    FUNCTION(DiscoveryInventoryChangeState),
    FUNCTION(DiscoveryInventoryCheckChange),
    FUNCTION(DiscoveryInventoryCreate),
    FUNCTION(DiscoveryInventoryFeed),
    FUNCTION(DiscoveryInventoryFree),
    FUNCTION(DiscoveryInventoryGetLastError),
    FUNCTION(DiscoveryInventoryJournalBegin),
    FUNCTION(DiscoveryInventoryJournalCreate),
    FUNCTION(DiscoveryInventoryJournalEnd),
    FUNCTION(DiscoveryInventoryJournalEntries),
    FUNCTION(DiscoveryInventoryJournalFeed),
    FUNCTION(DiscoveryInventoryJournalFree),
    FUNCTION(DiscoveryInventoryJournalUndo),
    FUNCTION(DiscoveryInventoryKeptChanges),
    FUNCTION(DiscoveryInventoryNextEvent),
    FUNCTION(DiscoveryInventoryNextTime),
    FUNCTION(DiscoveryInventoryNextWish),
    FUNCTION(DiscoveryInventorySearchState),
    FUNCTION(DiscoveryInventorySetOffline),
    FUNCTION(DiscoveryInventorySetPortHeld),
    FUNCTION(DiscoveryInventorySnapshot),
    FUNCTION(DiscoveryInventoryStartChange),
    FUNCTION(DiscoveryInventoryStartSearch),
    FUNCTION(DiscoveryInventoryStopSearch),
    FUNCTION(DiscoveryInventoryWishText),
};

int Start(void)
{
    for (unsigned i = 0; i < sizeof Functions / sizeof *Functions; ++i)
    {
        if (Functions[i] == 0)
            return 1;
    }
    if (Initialize("bare.log", DiscoveryLogStandard) != 0)
        return 2;
    if (StartServer() != 0 || InitBroadcastProvider("[\"127.0.0.1\"]") != 0 || Discover() != 0)
        return 3;
    if (SetMinCompatibleVersion("none") != (int)0xC0090114)
        return 4;
    DiscoveryInventory* inventory;
    if (DiscoveryInventoryCreate("{}", &inventory) != 0)
        return 5;
    DiscoveryInventoryFree(inventory);
    return Terminate() == 0 ? 0 : 6;
}
