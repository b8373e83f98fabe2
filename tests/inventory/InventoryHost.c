/* A host written in C: devices and time are its own, the loop is the sample of the header. */

#include "DiscoveryInventory.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum
{
    DeviceCount = 3
};

static long long now = 1000;
static int waiting[DeviceCount]; /* answers that have not yet been taken */
static char document[DeviceCount][300];
static char shown[20000]; /* events */
static int questionsByMAC;
static int questionsByIP;
static int isSilent;
static int isBusy; /* the library: it takes no requests */

#define CHECK(condition)                                                                                               \
    do                                                                                                                 \
    {                                                                                                                  \
        if (!(condition))                                                                                              \
        {                                                                                                              \
            printf("line %d: %s; the last error is: %s\n", __LINE__, #condition, DiscoveryInventoryGetLastError());    \
            exit(1);                                                                                                   \
        }                                                                                                              \
    } while (0)

static int TakeMessage(const char** text)
{
    for (int i = 0; i < DeviceCount; ++i)
    {
        if (waiting[i] > 0)
        {
            --waiting[i];
            *text = document[i];
            return DiscoveryInventorySignature;
        }
    }
    return -1;
}

static long long TellTime(void)
{
    return now;
}

static long long HasRoute(const char* address)
{
    return strncmp(address, "10.0.0.", 7) == 0;
}

static long long CountLost(void)
{
    return 0;
}

static void Show(const char* event)
{
    CHECK(strlen(shown) + strlen(event) + 2 < sizeof(shown));
    strcat(shown, event);
    strcat(shown, "\n");
}

/* The functions of the library that talks with devices. */

static void Discover(void)
{
    for (int i = 0; i < DeviceCount; ++i)
    {
        waiting[i] += isSilent ? 0 : 1;
    }
}

static void RefreshClient(const char* address)
{
    CHECK(strlen(address) == 17);
    ++questionsByMAC;
    for (int i = 0; i < DeviceCount; ++i)
    {
        waiting[i] += !isSilent && strstr(document[i], address) != NULL ? 1 : 0;
    }
}

static void ReachClient(const char* address)
{
    CHECK(HasRoute(address));
    ++questionsByIP;
}

static int ChangeClientsHostName(const char* name, const char* address)
{
    if (isBusy)
    {
        return 41;
    }
    for (int i = 0; i < DeviceCount; ++i)
    {
        if (strstr(document[i], address) != NULL)
        {
            strncpy(strstr(document[i], "press-"), name, 7);
        }
    }
    return 0;
}

static int ChangeClientsHostNameWithIP(const char* name, const char* address)
{
    return ChangeClientsHostName(name, address);
}

static int ChangeClientsIPConfigurations(const char* nicConfigs)
{
    CHECK(strcmp(nicConfigs,
                 "[{\"MACAddress\":\"02:00:00:00:00:01\",\"FriendlyName\":\"eth1\",\"IPAddress\":\"10.0.0.9\","
                 "\"SubNetMask\":\"255.255.255.0\",\"DefaultGateway\":\"\",\"MTU\":\"Unknown\"}]") == 0);
    return 0;
}

static void Watch(DiscoveryInventory* session);

#include "HeaderSample.h"

static void Run(DiscoveryInventory* session, long long until)
{
    while (now < until)
    {
        long long next;
        Watch(session);
        CHECK(DiscoveryInventoryNextTime(session, &next) == 0);
        now = next > now && next < until ? next : now + 1;
    }
}

static int CountShown(const char* text)
{
    int count = 0;
    for (const char* at = strstr(shown, text); at != NULL; at = strstr(at + 1, text))
    {
        ++count;
    }
    return count;
}

static void TestRefusals(DiscoveryInventory* session)
{
    const int invalidFormat = (int)0xC0090114;
    const char* text = "";
    DiscoveryInventory* none = session;
    CHECK(DiscoveryInventoryCreate("{\"Misses\":0}", &none) == invalidFormat);
    CHECK(none == NULL);
    CHECK(strcmp(DiscoveryInventoryGetLastError(), "options: \"Misses\" 0 is no whole number from 1 to 1000") == 0);
    CHECK(DiscoveryInventoryCreate("{\"Journal\":\".\"}", &none) == 58);
    CHECK(strncmp(DiscoveryInventoryGetLastError(), "cannot read the journal .: ", 27) == 0);
    CHECK(DiscoveryInventoryKeptChanges(session, NULL, &text) == 0 && text == NULL);
    CHECK(DiscoveryInventoryCreate("{\n \"Misses\":}", &none) == invalidFormat);
    CHECK(strstr(DiscoveryInventoryGetLastError(), "line 2, column 11") != NULL);
    CHECK(DiscoveryInventoryCreate("{\"misses\":1}", &none) == invalidFormat);
    CHECK(strstr(DiscoveryInventoryGetLastError(), "\"misses\" is none of AcceptedConflicts, ") != NULL);
    CHECK(DiscoveryInventoryStartSearch(session, "{\"Also\":[\"10.0.0.300\"]}", now) == invalidFormat);
    CHECK(strstr(DiscoveryInventoryGetLastError(), "\"Also\": \"10.0.0.300\" is no IPv4 address") != NULL);
    CHECK(DiscoveryInventorySearchState(session, NULL, &text) == 0 && text == NULL);
    CHECK(DiscoveryInventoryFeed(session, 0, "{\"Host\":", now) == invalidFormat);
    CHECK(DiscoveryInventoryFeed(session, 3, "{\"Host\":{}}", now) == 10);
    CHECK(DiscoveryInventoryFeed(session, 0, NULL, now) == 9);
    CHECK(DiscoveryInventoryAdvanceTime(session, -1) == 10);
    CHECK(DiscoveryInventoryAdvanceTime(NULL, now) == 9);
    CHECK(DiscoveryInventorySnapshot(session, &text) == 0);
    CHECK(strcmp(text, "{\"Now\":1000,\"LostEvents\":0,\"Devices\":[],\"Search\":null}") == 0);
    DiscoveryInventoryFree(NULL);
}

static void TestChanges(DiscoveryInventory* session)
{
    const int invalidFormat = (int)0xC0090114;
    const char* text;
    long long id;
    CHECK(DiscoveryInventoryStartChange(session, "{\"MACAddress\":\"02-00\",\"HostName\":\"a\"}", "", now, &id) ==
          invalidFormat);
    CHECK(strcmp(DiscoveryInventoryGetLastError(), "\"02-00\" is no MAC address, such as 00:1A:2B:3C:4D:5E") == 0);
    CHECK(DiscoveryInventoryStartChange(session, "{\"IPAddress\":\"10.0.0.7\",\"MTU\":1400}", "", now, &id) ==
          invalidFormat);
    CHECK(strcmp(DiscoveryInventoryGetLastError(), "the request's \"MTU\" is no text") == 0);

    CHECK(DiscoveryInventoryCheckChange(session, "{\"MACAddress\":\"02-00-00-00-00-01\",\"HostName\":\"Press-2\"}", "",
                                        &text) == 0);
    CHECK(strcmp(text, "{\"Code\":\"name-taken\",\"Text\":\"\\\"Press-2\\\" is the name of 02:00:00:00:00:02\"}") == 0);

    isBusy = 1;
    CHECK(DiscoveryInventoryStartChange(session, "{\"MACAddress\":\"02:00:00:00:00:01\",\"HostName\":\"press-9\"}",
                                        "{\"Look\":false}", now, &id) == 0);
    Run(session, now + 600);
    CHECK(DiscoveryInventoryChangeState(session, id, &text) == 0);
    CHECK(strcmp(text,
                 "{\"MACAddress\":\"02:00:00:00:00:01\",\"Seconds\":0.0,\"Before\":{\"HostName\":\"press-1\"}}") == 0);
    DiscoveryInventoryJournal* journal;
    CHECK(DiscoveryInventoryJournalCreate(&journal) == 0);
    CHECK(DiscoveryInventoryJournalFeed(journal, "{\"Time\":") == invalidFormat);
    CHECK(DiscoveryInventoryJournalBegin(journal, session, id + 1, "12:00", NULL, &text) == 10);
    CHECK(DiscoveryInventoryJournalBegin(journal, session, id, "12:00", NULL, &text) == 0);
    char line[300] = "";
    strncat(line, text, sizeof(line) - 1);
    CHECK(DiscoveryInventoryJournalEntries(journal, &text) == 0 && strstr(text, "\"State\":\"open\"") != NULL);
    isBusy = 0;
    Run(session, now + 1000);
    CHECK(DiscoveryInventoryJournalEnd(journal, id, "applied", &text) == 0 && text != NULL);
    DiscoveryInventoryJournalFree(journal);
    CHECK(DiscoveryInventoryJournalCreate(&journal) == 0 && DiscoveryInventoryJournalFeed(journal, line) == 0);
    CHECK(DiscoveryInventoryJournalEnd(journal, id, "applied", &text) == 0 && text == NULL);
    CHECK(DiscoveryInventoryJournalUndo(journal, "02:00:00:00:00:02", &text) == 0 && text == NULL);
    CHECK(DiscoveryInventoryJournalUndo(journal, NULL, &text) == 0);
    CHECK(strstr(text, "\"Request\":{\"MACAddress\":\"02:00:00:00:00:01\",\"HostName\":\"press-1\"}}") != NULL);
    DiscoveryInventoryJournalFree(journal);
    CHECK(DiscoveryInventoryChangeState(session, id, &text) == 0 && text == NULL);
    CHECK(CountShown("\"Id\":1,\"Change\":{\"MACAddress\":\"02:00:00:00:00:01\",\"Verdict\":\"applied\",") == 1);
    CHECK(CountShown("\"After\":{\"HostName\":\"press-9\"}},\"Undo\":{\"MACAddress\":") == 1);

    CHECK(DiscoveryInventoryStartChange(session,
                                        "{\"MACAddress\":\"02:00:00:00:00:01\",\"IPAddress\":\"10.0.0.9\","
                                        "\"SubNetMask\":\"255.255.255.0\",\"DefaultGateway\":\"\","
                                        "\"FriendlyName\":\"eth1\"}",
                                        NULL, now, &id) == 0);
    Run(session, now + 7000);
    CHECK(CountShown("\"Verdict\":\"refused\"") == 1);
}

int main(void)
{
    DiscoveryInventory* session;
    const char* text;
    int isOver;
    for (int i = 0; i < DeviceCount; ++i)
    {
        sprintf(document[i],
                "{\"Host\":{\"HostName\":\"press-%d\",\"IsHostNameReadOnly\":false,\"NICs\":[{\"MACAddress\":\"02:00:"
                "00:00:00:0%d\","
                "\"IPAddress\":\"10.0.%d.7\"}]}}",
                i, i, i);
    }
    CHECK(DiscoveryInventoryCreate("{\"AskEvery\":5000,\"StaleAfter\":8000,\"Misses\":4}", &session) == 0);
    TestRefusals(session);

    CHECK(DiscoveryInventoryStartSearch(session, "{\"Networks\":[\"10.0.0.1/24\"]}", now) == 0);
    Run(session, 4000);
    CHECK(DiscoveryInventorySearchState(session, &isOver, &text) == 0);
    CHECK(isOver == 1);
    CHECK(strstr(text, "\"Devices\":3,") != NULL && strstr(text, "\"Complete\":true") != NULL);
    CHECK(CountShown("\"Appeared\"") == DeviceCount && CountShown("\"SearchEnded\"") == 1);
    CHECK(DiscoveryInventorySnapshot(session, &text) == 0);
    CHECK(strstr(text, "\"State\":\"present\",\"Here\":true,\"FirstSeen\":1020,") != NULL);

    TestChanges(session);
    isSilent = 1;
    CHECK(DiscoveryInventorySetPortHeld(session, 1, now) == 0);
    Run(session, 40000);
    CHECK(CountShown("\"Gone\"") == 0 && CountShown("\"PortHeld\"") == 1);
    CHECK(DiscoveryInventorySetPortHeld(session, 0, now) == 0);
    CHECK(DiscoveryInventorySetOffline(session, 1, now) == 0);
    Run(session, 80000);
    CHECK(CountShown("\"Gone\"") == 0 && CountShown("\"Offline\"") == 1);
    CHECK(DiscoveryInventorySetOffline(session, 0, now) == 0);
    Run(session, 110000);
    CHECK(CountShown("\"Gone\"") == DeviceCount);
    CHECK(questionsByMAC > 0 && questionsByIP > 0); /* the one with a route */
    CHECK(DiscoveryInventoryStopSearch(session, now) == 0);
    DiscoveryInventoryFree(session);
    return 0;
}
