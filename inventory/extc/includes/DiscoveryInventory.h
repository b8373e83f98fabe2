#ifndef DISCOVERY_INVENTORY_H
#define DISCOVERY_INVENTORY_H

/**
 * @file
 * DiscoveryInventory: which devices are on the network, what becomes of them, and whether that is all of them.
 *
 * It stands beside DiscoveryServer.ExtC, which talks with the devices, and does nothing by itself: the host feeds a
 * session with the documents of its callbacks and with the time, carries out the session's wishes, and takes its
 * events. It starts no thread, reads no clock, and opens no socket or file unless its options let it.
 *
 * @par Sample
 * TakeMessage, TellTime, HasRoute, CountLost and Show are the host's.
 * @code
 *     static int HasSent(DiscoveryInventory* session, const DiscoveryInventoryWish* wish)
 *     {
 *         const char* text;
 *         DiscoveryInventoryWishText(session, &text, NULL);
 *         if (wish->Kind == DiscoveryInventoryRename)
 *             return ChangeClientsHostName(text, wish->Address) == 0;
 *         if (wish->Kind == DiscoveryInventoryRenameAt)
 *             return ChangeClientsHostNameWithIP(text, wish->Address) == 0;
 *         return wish->Kind == DiscoveryInventoryConfigure && ChangeClientsIPConfigurations(text) == 0;
 *     }
 *
 *     void Watch(DiscoveryInventory* session)
 *     {
 *         const char* text;
 *         DiscoveryInventoryWish wish;
 *         for (int message; (message = TakeMessage(&text)) >= 0;)
 *             DiscoveryInventoryFeed(session, message, text, TellTime());
 *         DiscoveryInventoryAdvanceTime(session, TellTime());
 *         while (DiscoveryInventoryNextWish(session, &wish) == 0 && wish.Kind != DiscoveryInventoryNoWish)
 *         {
 *             if (wish.Kind == DiscoveryInventoryAskAll)
 *                 Discover();
 *             else if (wish.Kind == DiscoveryInventoryAskMAC)
 *                 RefreshClient(wish.Address);
 *             else if (wish.Kind == DiscoveryInventoryAskIP)
 *                 ReachClient(wish.Address);
 *             else if (wish.Kind == DiscoveryInventoryIsReachable)
 *                 DiscoveryInventoryAnswerWish(session, wish.Id, HasRoute(wish.Address));
 *             else if (wish.Kind == DiscoveryInventoryCountLost)
 *                 DiscoveryInventoryAnswerWish(session, wish.Id, CountLost());
 *             else
 *                 DiscoveryInventoryAnswerWish(session, wish.Id, HasSent(session, &wish));
 *         }
 *         while (DiscoveryInventoryNextEvent(session, &text) == 0 && text != NULL)
 *             Show(text);
 *     }
 * @endcode
 * A host calls this again and again: when a message has come, and at the time that DiscoveryInventoryNextTime says.
 *
 * @par Wishes
 *     They are to be carried out in their order, and those that expect an answer to be answered before the next one is
 *     taken. HasRoute of the sample is 1 when the system has a route to the address, and 0 otherwise; a UDP socket that
 *     is connected to it tells, and nothing may be sent. For ReachClient to an address without a route makes the
 *     library lose its socket and restart. CountLost is how many datagrams to the library's port this machine has
 *     dropped since any moment (on Linux a column of /proc/net/udp), or -1 where the system does not tell. The requests
 *     of changes are answered with 1 once the library has taken them, and with 0 when it has not, as while it restarts
 *     itself: then they are wished for again. A wish of a kind that this list does not have is left out.
 *
 * @par Events
 *     {"Event":"Appeared","When":1500,"Device":{"Host":{...},"SourceNIC":{...}}}. Device is the document as the
 *     callback gave it. Events are Appeared, Changed, Left (it said Bye), Gone (it answers no more), Returned,
 *     Flapping (it comes and goes, and no Left, Gone and Returned are told until it has Settled), Settled, Forgotten
 *     (it turned out to be an interface of another one, or gave way to it in a full table), Conflict, PortHeld,
 *     PortReleased, Offline, Online, RoundEnded, SearchEnded and ChangeEnded.
 *     Changed and Returned may have "Changes":[{"Property":"HostName","Before":"a","After":"b"}], in which what was not
 *     there is left out; Conflict has "Conflict":{"Kind":"mac"|"ip"|"name","Value":"10.0.0.5","Count":2,
 *     "First":{document},"Second":{document}}, the two of a search have "Search":{report}, and ChangeEnded has "Id",
 *     "Change":{outcome} and, when it is known what the device had, "Undo":{request}, which gives it back. Where the
 *     session keeps a journal and the request was sent, "Entry":".." is the Id of its entry there.
 *
 * @par Reports
 *     {"Devices":1000,"Rounds":[{"Asked":"all","Answers":981,"New":981,"Lost":12},...],"LostHere":12,
 *     "EstimatedUnseen":0.0,"Complete":true,"Seconds":2.1}. Asked is all, sweep or list; what is unknown is null.
 *
 * @par Outcomes
 *     {"MACAddress":"00:1A:2B:3C:4D:5E","Verdict":"applied","Seconds":0.4,"Before":{"HostName":"press-1"},
 *     "After":{"HostName":"press-4"}}. Before is what the device had when it was told to change, and After what it has
 *     said last since; either is left out when it is not known. The settings of an interface are "FriendlyName",
 *     "IPAddress", "SubNetMask", "DefaultGateway" and "MTU". Verdict is
 *
 *         applied        the device shows the change
 *         reboot-needed  it is silent or does not show it, and has said that it takes such changes when it starts anew
 *         refused        it answers and does not show it
 *         no-answer      it does not answer
 *         not-sent       something was wrong: "Code" and "Text", a sentence for people, say what in place of "Seconds"
 *
 *     Code is bad-name (empty, only blanks, with control characters, no UTF-8 or over 255 bytes), name-read-only (the
 *     device says so), unknown-device (it has not answered), name-taken, bad-mask, bad-address (of a network,
 *     broadcast, multicast, loopback), gateway-outside (of the interface's network), address-taken, no-route (to the IP
 *     address of a device) or send-failed (the library took no request in time, or the journal cannot be written).
 *
 * @par Text
 *     All text is 8-bit and ends with NUL. Options are JSON; unknown members are refused. Text from a device is passed
 *     on as it came: it may hold invalid UTF-8.
 *
 * @par Ownership
 *     Arguments belong to the caller and are copied. Text that a function gives belongs to the session and lasts until
 *     the next call with the same session.
 *
 * @par Threads
 *     Any thread, but one at a time for each session. The callbacks of DiscoveryServer.ExtC run on a thread of their
 *     own: hand their documents over, or lock.
 *
 * @par Time
 *     Milliseconds since any moment, from 0 to 2^53, by a clock that is never set back. An earlier time than before
 *     counts as that one.
 *
 * @par Result codes
 *     0 is success. A call that fails changes nothing; DiscoveryInventoryGetLastError tells what is wrong.
 *
 *                  9  ArgumentNull
 *                 10  ArgumentOutOfRange
 *                 27  OutOfMemory
 *                 58  IO                  the journal's file cannot be read or written
 *         0xC0090114  Invalid Format      options or a document are not what they should be
 *
 * @par Binary interface
 *     On 32-bit Windows every function is __stdcall, and the DLL exports the decorated names, such as
 *     _DiscoveryInventoryCreate@8. Elsewhere the platform's C convention and the plain names apply.
 */

#if defined(_WIN32)
#define DISCOVERY_INVENTORY_CALL __stdcall
/* The DLL exports by its module definition file: dllexport would add a second, differently decorated set of names. */
#define DISCOVERY_INVENTORY_API
#else
#define DISCOVERY_INVENTORY_CALL
#define DISCOVERY_INVENTORY_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C"
{
#endif

    /** A session: a table of devices, and at most one search at a time. */
    typedef struct DiscoveryInventory DiscoveryInventory;

    /** Which callback a document came from. */
    enum DiscoveryInventoryMessage
    {
        DiscoveryInventorySignature = 0,
        DiscoveryInventoryHello = 1,
        DiscoveryInventoryBye = 2
    };

    /** What a session wishes. */
    enum DiscoveryInventoryWishKind
    {
        DiscoveryInventoryNoWish = 0,
        DiscoveryInventoryAskAll = 1,      /**< call Discover */
        DiscoveryInventoryAskMAC = 2,      /**< call RefreshClient with the address */
        DiscoveryInventoryAskIP = 3,       /**< call ReachClient with the address */
        DiscoveryInventoryIsReachable = 4, /**< answer with 1 when there is a route to the address, or with 0 */
        DiscoveryInventoryCountLost = 5,   /**< answer with the number of datagrams lost by now, or with -1 */
        DiscoveryInventoryRename = 6,      /**< call ChangeClientsHostName with text and address, and answer */
        DiscoveryInventoryRenameAt = 7,    /**< call ChangeClientsHostNameWithIP with text and address, and answer */
        DiscoveryInventoryConfigure = 8    /**< call ChangeClientsIPConfigurations with the text, and answer */
    };

    /** A wish of a session. */
    typedef struct DiscoveryInventoryWish
    {
        int Kind;            /**< one of DiscoveryInventoryWishKind */
        const char* Address; /**< empty where the kind has none */
        long long Id;        /**< to answer with */
    } DiscoveryInventoryWish;

    /**
     * Makes a session. Its options are a JSON object with any of these members (shown with what holds without them):
     *
     *     {"MaximumDevices":10000,   the device longest unseen gives way to a new one
     *      "AskEvery":10000,         milliseconds from one question to all devices to the next; 0 asks nobody
     *      "StaleAfter":15000,       milliseconds of silence after which a device is asked by itself
     *      "AnswerTime":1000,        milliseconds from such a question to the next one
     *      "Misses":8,               so many of them unanswered and the device is gone
     *      "AcceptedConflicts":[],   not told, such as "ip:10.0.0.5", "name:press-4" or "mac:00:1A:2B:3C:4D:5E"
     *      "Journal":"",             a file, in UTF-8, in which each change is kept: before the host has the wish for
     *                                its request, and again before the host has the event of its end. Other programs
     *                                may keep the same file at the same time. It is made so that only its user may
     *                                read it.
     *      "AskSystem":false}        true: what only the system knows the session finds out by itself, in the process
     *                                of the library: whether there is a route, how many datagrams were lost, whether
     *                                another program holds the port, whether the machine has lost its networks, and
     *                                the Networks of a search whose options have none. The host has neither of the
     *                                wishes IsReachable and CountLost. While the machine has lost all its networks
     *                                (tunnels, point-to-point and container interfaces do not count) the session is
     *                                as DiscoveryInventorySetOffline has it: it asks nobody by itself and tells of
     *                                nobody that it is gone.
     *
     * @param optionsJson the options; null or empty for the usual ones.
     * @param session     where the session is put, or null when there is none; DiscoveryInventoryFree ends it.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryCreate(const char* optionsJson,
                                                                                  DiscoveryInventory** session);

    /**
     * Ends a session.
     *
     * @param session the session; null is allowed.
     */
    DISCOVERY_INVENTORY_API void DISCOVERY_INVENTORY_CALL DiscoveryInventoryFree(DiscoveryInventory* session);

    /**
     * Takes what a callback was given.
     *
     * @param session  the session.
     * @param message  which callback: one of DiscoveryInventoryMessage.
     * @param hostJson the document.
     * @param now      the time.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryFeed(DiscoveryInventory* session,
                                                                                int message,
                                                                                const char* hostJson,
                                                                                long long now);

    /**
     * Lets time go on. New wishes and events may come of it.
     *
     * @param session the session.
     * @param now     the time.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryAdvanceTime(DiscoveryInventory* session,
                                                                                       long long now);

    /**
     * Gives the next wish.
     *
     * @param session the session.
     * @param wish    where it is put; its Kind is DiscoveryInventoryNoWish when there is none.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryNextWish(DiscoveryInventory* session,
                                                                                    DiscoveryInventoryWish* wish);

    /**
     * Gives the text of the wish that was taken last: the host name, or the JSON array of interfaces, that a device is
     * told.
     *
     * @param session the session.
     * @param text    where it is put; empty where the kind of wish has none.
     * @param change  where the id of the change that makes the request is put, or 0; may be null.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryWishText(DiscoveryInventory* session,
                                                                                    const char** text,
                                                                                    long long* change);

    /**
     * Answers a wish. An id that waits for no answer is left out.
     *
     * @param session the session.
     * @param id      of the wish.
     * @param value   the answer.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryAnswerWish(DiscoveryInventory* session,
                                                                                      long long id,
                                                                                      long long value);

    /**
     * Gives the next event. A session whose host takes none keeps the latest 65536.
     *
     * @param session   the session.
     * @param eventJson where the document is put; null when there is no event.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryNextEvent(DiscoveryInventory* session,
                                                                                     const char** eventJson);

    /**
     * Tells when DiscoveryInventoryAdvanceTime is to be called again, at the latest, if nothing comes before.
     *
     * @param session the session.
     * @param time    where the time is put.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryNextTime(DiscoveryInventory* session,
                                                                                    long long* time);

    /**
     * Says whether another program holds the library's port and receives the answers in its stead. As long as one does,
     * no device is told to be gone.
     *
     * @param session the session.
     * @param isHeld  not 0 when one does.
     * @param now     the time.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventorySetPortHeld(DiscoveryInventory* session,
                                                                                       int isHeld,
                                                                                       long long now);

    /**
     * Says whether no network interface of this machine takes part, as when its cable is pulled. As long as none does,
     * devices are asked by searches and changes alone, and none is told to be gone; afterwards all have their time
     * again.
     *
     * @param session   the session.
     * @param isOffline not 0 when none takes part.
     * @param now       the time.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventorySetOffline(DiscoveryInventory* session,
                                                                                      int isOffline,
                                                                                      long long now);

    /**
     * Gives all devices:
     *
     *     {"Now":1500,"LostEvents":0,
     *      "Devices":[{"State":"present","Here":true,"FirstSeen":0,"LastSeen":1500,"Source":"00:1A:2B:3C:4D:5E",
     *                  "Changes":[{"When":900,"Property":"HostName","Before":"a","After":"b"}],"Device":{document}}],
     *      "Search":{report}}
     *
     * State is present, stale (silent), asked, gone, left or flapping; Source is the interface that the device was
     * heard from; Changes are those since it was first seen; Search is null when there was none.
     *
     * @param session the session.
     * @param json    where the document is put.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventorySnapshot(DiscoveryInventory* session,
                                                                                    const char** json);

    /**
     * Starts a search, in the place of one that may be running. It asks until all answers are accounted for, and ends
     * with the event SearchEnded. Its options are a JSON object with any of these members (shown with what holds
     * without them):
     *
     *     {"Wait":10000,     milliseconds after which it ends even if it is not complete
     *      "Once":false,     asks all devices a single time, and waits until the end
     *      "Expect":0,       so many devices end it; 0 when their number is unknown
     *      "Sweep":true,     may ask the addresses of local networks one by one when answers were lost, which looks
     *                        like a scan to those who watch the network
     *      "Networks":[],    this machine's addresses and networks, such as "192.168.1.10/24"
     *      "Also":[]}        addresses elsewhere to ask one by one, such as "10.2.0.5" and "10.2.1.0/26"
     *
     * @param session     the session.
     * @param optionsJson the options; null or empty for the usual ones.
     * @param now         the time.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryStartSearch(DiscoveryInventory* session,
                                                                                       const char* optionsJson,
                                                                                       long long now);

    /**
     * Ends the search as it is. Nothing happens when none runs.
     *
     * @param session the session.
     * @param now     the time.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryStopSearch(DiscoveryInventory* session,
                                                                                      long long now);

    /**
     * Gives the report of the search that was started last, as it is by now.
     *
     * @param session the session.
     * @param isOver  where 1 is put when it has ended, and 0 otherwise; may be null.
     * @param json    where the report is put; null when no search was started.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventorySearchState(DiscoveryInventory* session,
                                                                                       int* isOver,
                                                                                       const char** json);

    /**
     * Finds out what is wrong with a change as far as is known by now, and sends nothing.
     *
     * @param session     the session.
     * @param requestJson as for DiscoveryInventoryStartChange.
     * @param optionsJson as for DiscoveryInventoryStartChange.
     * @param refusalJson where {"Code":"name-taken","Text":"..."} is put; null when nothing is wrong.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryCheckChange(DiscoveryInventory* session,
                                                                                       const char* requestJson,
                                                                                       const char* optionsJson,
                                                                                       const char** refusalJson);

    /**
     * Starts to change a device. The change learns what the device has, is checked, wishes for its request, and asks
     * the device until it shows the change; it ends with the event ChangeEnded. Any number of changes go on at once.
     *
     * The request is a JSON object. One of
     *
     *     {"MACAddress":"00:1A:2B:3C:4D:5E","HostName":"press-4"}
     *     {"IPAddress":"10.2.0.5","HostName":"press-4"}      to a device that broadcasts do not reach
     *     {"MACAddress":"00:1A:2B:3C:4D:5E","IPAddress":"10.0.0.7","SubNetMask":"255.255.255.0",
     *      "DefaultGateway":"","MTU":"1500","FriendlyName":"eth0"}
     *
     * where MTU and FriendlyName may be missing: the device then keeps its own, or takes its usual MTU.
     *
     * Its options are a JSON object with any of these members (shown with what holds without them):
     *
     *     {"Look":true,           searches first, for three seconds at most, or waits for a search that runs; without
     *                             it, names and addresses are taken only by devices that are known already
     *      "Timeout":3000,        milliseconds from the request to the verdict
     *      "RebootTimeout":60000, the same for a device that takes the change when it starts anew; without this member
     *                             only one that falls silent is waited for so long, another one for Timeout
     *      "Force":false,         goes on after unknown-device, name-taken and address-taken
     *      "GivesBack":false,     the request gives back what the device had before, which is right whatever it is
     *      "Undoes":""}           the Id of the entry of the session's journal that the change takes back
     *
     * @param session     the session.
     * @param requestJson the request.
     * @param optionsJson the options; null or empty for the usual ones.
     * @param now         the time.
     * @param id          where the id of the change is put, which the event ChangeEnded bears.
     * @return 0, or a result code. What is wrong with a well-formed request the event tells.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryStartChange(
        DiscoveryInventory* session, const char* requestJson, const char* optionsJson, long long now, long long* id);

    /**
     * Gives the outcome of a change as it is by now. When the request is wished for, Before is in it: what a host keeps
     * before it sends the request can be given back.
     *
     * @param session the session.
     * @param id      of the change.
     * @param json    where the outcome is put, without a verdict; null when the change has ended.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryChangeState(DiscoveryInventory* session,
                                                                                       long long id,
                                                                                       const char** json);

    /**
     * Reads the session's journal:
     *
     *     {"Entries":[{"Time":"..","MACAddress":"..","IPAddress":"..","Before":{..},"After":{..},"Undoes":"..",
     *                  "Exchange":"..","Verdict":"..","State":"done","Id":".."}],
     *      "Newest":{"Entry":{..},"Request":{..}},
     *      "Broken":["changes: line 7 is broken and left out: ..."]}
     *
     * Entries are all changes, the oldest first. IPAddress is that by which a device was renamed, Undoes the Id of the
     * entry that the change has taken back, and Exchange the same in changes by which devices exchange names or
     * addresses; State is open (nobody knows what has come of it), done or undone; what is not known is left out.
     * Newest is the newest change that can be undone, or null; its request is for DiscoveryInventoryStartChange with
     * the options GivesBack, and Undoes with the Id.
     *
     * An exchange is taken back in several calls, one for each of its entries, the newest first, and each after the
     * change of the one before has ended as applied: without a MAC address when nothing was changed since, and with
     * that of the entry otherwise. A step whose name or address another device still has is refused as any other
     * change (name-taken, address-taken).
     *
     * @param session    the session.
     * @param macAddress of the interface whose change the newest is to be; null or empty for any.
     * @param json       where the document is put; null when the session keeps no journal.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryKeptChanges(DiscoveryInventory* session,
                                                                                       const char* macAddress,
                                                                                       const char** json);

    /**
     * Remembers changes over the end of the host, which keeps its lines itself, in a database for instance. In a file
     * the option Journal of a session keeps them.
     */
    typedef struct DiscoveryInventoryJournal DiscoveryInventoryJournal;

    /**
     * Makes a journal without entries.
     *
     * @param journal where it is put; DiscoveryInventoryJournalFree ends it.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL
    DiscoveryInventoryJournalCreate(DiscoveryInventoryJournal** journal);

    /**
     * Ends a journal.
     *
     * @param journal the journal; null is allowed.
     */
    DISCOVERY_INVENTORY_API void DISCOVERY_INVENTORY_CALL
    DiscoveryInventoryJournalFree(DiscoveryInventoryJournal* journal);

    /**
     * Takes the next of the lines that the host has kept.
     *
     * @param journal the journal.
     * @param line    the line.
     * @return 0, or a result code: a broken line, as the last one may be after a power cut, may be left out.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL
    DiscoveryInventoryJournalFeed(DiscoveryInventoryJournal* journal, const char* line);

    /**
     * Enters a change. To be called when its request is wished for, with the line kept before the request is sent.
     *
     * @param journal the journal, for one session alone.
     * @param session the session.
     * @param change  the id of the change, as DiscoveryInventoryWishText gives it.
     * @param time    the time of the day as text, which tells this change of the device from others.
     * @param undoes  the "Id" of the entry that the change takes back; null or empty for none.
     * @param line    where the line to be kept is put; it belongs to the journal, until the next call with it.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL
    DiscoveryInventoryJournalBegin(DiscoveryInventoryJournal* journal,
                                   DiscoveryInventory* session,
                                   long long change,
                                   const char* time,
                                   const char* undoes,
                                   const char** line);

    /**
     * Enters what has come of a change, as the event ChangeEnded tells.
     *
     * @param journal the journal.
     * @param change  the "Id" of the event.
     * @param verdict the "Verdict" of the event.
     * @param line    where the line to be kept is put; null when the change was not entered.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL DiscoveryInventoryJournalEnd(
        DiscoveryInventoryJournal* journal, long long change, const char* verdict, const char** line);

    /**
     * Gives all entries, the oldest first:
     *
     *     [{"Time":"..","MACAddress":"..",...}], as DiscoveryInventoryKeptChanges has them
     *
     * @param journal the journal.
     * @param json    where the array is put.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL
    DiscoveryInventoryJournalEntries(DiscoveryInventoryJournal* journal, const char** json);

    /**
     * Gives the newest change that is not undone, and how to undo it: {"Entry":{..},"Request":{..}}, of which the
     * request is for DiscoveryInventoryStartChange with the option GivesBack. An exchange is taken back as with
     * DiscoveryInventoryKeptChanges.
     *
     * @param journal    the journal.
     * @param macAddress of the interface whose change is meant, 00:1A:2B:3C:4D:5E; null or empty for any.
     * @param json       where the document is put; null when there is none.
     * @return 0, or a result code.
     */
    DISCOVERY_INVENTORY_API int DISCOVERY_INVENTORY_CALL
    DiscoveryInventoryJournalUndo(DiscoveryInventoryJournal* journal, const char* macAddress, const char** json);

    /**
     * Tells what was wrong with the last call of this thread that failed.
     *
     * @return the text, for people; never null, and valid until the next failure.
     */
    DISCOVERY_INVENTORY_API const char* DISCOVERY_INVENTORY_CALL DiscoveryInventoryGetLastError(void);

#ifdef __cplusplus
}
#endif

#endif
