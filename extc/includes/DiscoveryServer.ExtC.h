#ifndef DISCOVERY_SERVER_EXTC_H
#define DISCOVERY_SERVER_EXTC_H

/**
 * @file
 * DiscoveryServer.ExtC: finds devices on the local networks by JSON datagrams over UDP.
 *
 * @par Order of calls
 *     Initialize; the three callback setters and SetMinCompatibleVersion as wanted; StartServer; InitBroadcastProvider
 *     as wanted; any number of requests (Discover, RefreshClient, ReachClient, ChangeClients...); StopServer as wanted;
 *     Terminate. After Terminate the library may be unloaded or initialized again. On Linux dlclose keeps it mapped.
 *
 * @par Requests
 *     A request is queued and sent by the library's own thread: its result says that it was queued, not that it was
 *     delivered or that a device answered. At most 512 requests and notifications wait, in one queue; what comes on top
 *     is dropped with a line in the log. So while devices, or somebody who sends in their name, report more than the
 *     callbacks can take, requests are dropped although their functions return 0. The next one is sent when the
 *     callbacks of what waits before it have returned. Answers reach the host through the callbacks. Devices listen on
 *     UDP port 12000, the library on 12001.
 *
 * @par Text
 *     All text is 8-bit and ends with NUL; JSON documents and host names are UTF-8, without byte order mark. Member
 *     names of documents that the library reads are matched without regard to ASCII letter case. A text of more than
 *     16 MiB (16777216 bytes) is refused with code 0xC0090114 before it is read. Text from a device is passed on
 *     as the device sent it: it may hold invalid UTF-8 and control characters. On Windows a log path is UTF-8 when it
 *     is valid UTF-8, and text in the ANSI code page otherwise.
 *
 * @par Ownership
 *     Arguments belong to the caller and are copied before the call returns. The text that a callback receives belongs
 *     to the library and is gone when the callback returns. The result of GetErrorMessage belongs to the caller.
 *
 * @par Threads
 *     Requests, the callback setters, InitBroadcastProvider, SetMinCompatibleVersion and GetErrorMessage may be called
 *     from any thread, also from a callback. StartServer and StopServer may be called from any thread of the host; one
 *     that finds the server being started or stopped waits for that. Initialize and Terminate must not run at the same
 *     time as any other function, and neither must the first call of a process. Callbacks run one at a time on a thread
 *     of the library, which sends nothing while a callback runs: return soon. From within a callback Initialize,
 *     StartServer, StopServer and Terminate are refused with code 30. No exception may leave a callback.
 *
 * @par Result codes
 *     0 is success. Everything else is the code of the failure; GetErrorMessage has its text, and the log has a line
 *     with the details. A call that fails changes nothing, unless its description says otherwise. Codes from 0xC0090001
 *     on are negative as an int; print them with "0x%08X". DiscoveryResult names those that a host meets; there are
 *     others, too.
 *
 * @par Binary interface
 *     On 32-bit Windows every function and every callback is __stdcall, and the DLL exports the decorated names, such
 *     as _Initialize@8. Elsewhere the platform's C convention and the plain names apply.
 */

/** The version of this header; a library with the same first number and the same or a later second one fits it. */
#define DISCOVERY_EXTC_VERSION_MAJOR 1
#define DISCOVERY_EXTC_VERSION_MINOR 0 /**< grows with constants and members of documents; the functions stay */
#define DISCOVERY_EXTC_VERSION_PATCH 0 /**< grows with corrections */

#if defined(_WIN32)
#define DISCOVERY_EXTC_CALL __stdcall
/* The DLL exports by its module definition file: dllexport would add a second, differently decorated set of names. */
#define DISCOVERY_EXTC_API
#else
#define DISCOVERY_EXTC_CALL
#define DISCOVERY_EXTC_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C"
{
#endif

    /**
     * How much goes into the log. None writes no lines about events at all.
     */
    enum DiscoveryLogLevel
    {
        DiscoveryLogCritical = 1, /**< life cycle, rejected messages, failures */
        DiscoveryLogStandard = 2, /**< and requests and handled messages */
        DiscoveryLogDebug = 3,    /**< and the text of every message */
        DiscoveryLogNone = 255
    };

    /**
     * Results of the functions that a host meets.
     */
    enum DiscoveryResult
    {
        DiscoveryResultSuccess = 0,
        DiscoveryResultArgumentNull = 9, /**< a text argument is a null pointer */
        DiscoveryResultArgumentOutOfRange = 10,
        DiscoveryResultOutOfMemory = 27,
        /** not initialized, already initialized, or not allowed within a callback */
        DiscoveryResultInvalidOperation = 30,
        /** a request while the server is not started, or while it restarts itself: then repeat it later, without
            StartServer */
        DiscoveryResultNullPointer = 41,
        DiscoveryResultIO = 58, /**< the log cannot be opened: access denied, a folder in its place, a path too long */
        DiscoveryResultDirectoryNotFound = 59, /**< the log's path leads nowhere, such as to a missing drive */
        DiscoveryResultFileNotFound = 64,      /**< the log's path is empty, or leads nowhere */
        DiscoveryResultSocket = 73,            /**< the network refused, for instance because UDP port 12001 is taken */
        DiscoveryResultResourceNotFound = -0x3FF6FEF7, /**< 0xC0090109: a JSON document lacks a required member */
        /** 0xC0090114: a text is not the JSON, MAC address, IP address or version that it should be, or it is too large
         */
        DiscoveryResultInvalidFormat = -0x3FF6FEEC
    };

    /**
     * Told about a device that sent its signature: the answer to a request, or the device's own announcement of a
     * change.
     *
     * The document has the member "Host" and, when the device named the interface it sent from, "SourceNIC":
     *
     *     {"Host":{"HostName":"press-4","IsHostNameReadOnly":false,"RebootRequiredForIPConfigChange":false,
     *              "RebootRequiredForHostNameChange":false,"DeviceType":"Panel","DeviceFamily":"P300",
     *              "SerialNumber":"4711",
     *              "NICs":[{"FriendlyName":"eth0","MACAddress":"00:1A:2B:3C:4D:5E","IPAddress":"192.168.1.20",
     *                       "SubNetMask":"255.255.255.0","DefaultGateway":"","MTU":"1500"}],
     *              "Products":[{"ProductType":"Runtime","ProductSerialNumber":"4711-1","ProductVersion":"2.4",
     *                           "ProductName":"Visualization"}],
     *              "FileTransferInfos":{"Port":"22"}},
     *      "SourceNIC":{"FriendlyName":"eth0","MACAddress":"00:1A:2B:3C:4D:5E","IPAddress":"192.168.1.20",
     *                   "SubNetMask":"255.255.255.0","DefaultGateway":"","MTU":"1500"}}
     *
     * (without the blanks and line breaks). All members but the four switches are strings; an interface without gateway
     * has "", an unknown MTU is "Unknown".
     *
     * @param hostJson the document; valid until the callback returns. Copy what is to be kept; do not free it.
     */
    typedef void(DISCOVERY_EXTC_CALL* ClientSignatureReceivedEventCallBack)(const char* hostJson);

    /**
     * Told about a device that announces itself, usually because it has started.
     *
     * @param hostJson as for ClientSignatureReceivedEventCallBack.
     */
    typedef void(DISCOVERY_EXTC_CALL* HelloMessageReceivedEventCallBack)(const char* hostJson);

    /**
     * Told about a device that takes its leave.
     *
     * @param hostJson as for ClientSignatureReceivedEventCallBack.
     */
    typedef void(DISCOVERY_EXTC_CALL* ByeMessageReceivedEventCallBack)(const char* hostJson);

    /**
     * Opens the log and prepares the library; no callback is set afterwards. Missing folders of the path are created,
     * and an existing log is continued. The log stays open until Terminate; others may read, rename and delete it
     * meanwhile.
     *
     * @param logPath  path of the log file.
     * @param logLevel one of DiscoveryLogLevel.
     * @return 0; 30 when the library is initialized already, which leaves it as it is, and within a callback; 9 when
     *         logPath is null, 10 when the level is unknown, 58, 59, 64 or another code when the log cannot be opened.
     *         After any of these but the first a later Initialize may succeed.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL Initialize(const char* logPath, int logLevel);

    /**
     * Stops the server, if it runs, forgets the callbacks and closes the log. Returns after a running callback has
     * returned; no callback runs afterwards. The minimum compatible version is kept.
     *
     * @return 0, also when the library is not initialized; 30 within a callback; the code of StopServer when stopping
     *         fails, and then nothing else has been done.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL Terminate(void);

    /**
     * Binds UDP port 12001 and starts the threads of the server. When the network fails later on, the server restarts
     * itself and keeps the callbacks and the broadcast provider. Requests return 41 meanwhile; the answer to that is to
     * wait, not StartServer: the restart may be through at that moment.
     *
     * @return 0, also when the server runs already. Do not start a running server: each callback would then be called
     *         twice for each message, until the next StopServer. 30 within a callback. While a restart waits for the
     *         port, 0 means that the server has been started instead of it, and 73 that the restart goes on waiting.
     *         After any other code, and otherwise after 73, call Terminate and Initialize before the next StartServer.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL StartServer(void);

    /**
     * Stops the server and releases its port. Returns after a running callback has returned; no callback runs
     * afterwards. Requests that still wait are discarded, and so is the broadcast provider. The callbacks stay set for
     * the next StartServer.
     *
     * @return 0, also when the server does not run; 30 within a callback. After any other code call Terminate and
     *         Initialize before the next StartServer.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL StopServer(void);

    /**
     * Gives the text of a result code. Works at any time, also before Initialize, from any thread.
     *
     * @param errorCode any number, such as a result of another function.
     * @return the text; "Unable to retrieve error message!" for a number that is no code of the library; a null pointer
     *         only when memory is exhausted. The caller frees it, on Windows with CoTaskMemFree, elsewhere with free.
     */
    DISCOVERY_EXTC_API char* DISCOVERY_EXTC_CALL GetErrorMessage(int errorCode);

    /**
     * Asks every device for its signature.
     *
     * @return 0 when the request is queued; 41 when the server is not started.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL Discover(void);

    /**
     * Tells devices to configure their network interfaces anew. The message goes to every device; a device takes the
     * entries that bear the MAC address of one of its interfaces.
     *
     * @param nicConfigsJson a JSON array of interfaces, which may be empty. "MTU" may be missing, all other members are
     *                       required; "DefaultGateway" is "" for none:
     *                       [{"FriendlyName":"eth0","MACAddress":"00:1A:2B:3C:4D:5E","IPAddress":"192.168.1.21",
     *                         "SubNetMask":"255.255.255.0","DefaultGateway":"192.168.1.1","MTU":"1500"}]
     * @return 0 when the request is queued; 9 for a null pointer; 0xC0090114 when the text is not a JSON array or holds
     *         a malformed address; 0xC0090109 when an element is no object or lacks a member; 41 when the server is not
     *         started.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL ChangeClientsIPConfigurations(const char* nicConfigsJson);

    /**
     * Tells the device that owns a MAC address to take a new host name. The message is broadcast, so it reaches devices
     * whose IP address is unknown or does not fit the network.
     *
     * @param newHostName the name.
     * @param macAddress  six hexadecimal numbers joined by colons, such as 00:1A:2B:3C:4D:5E.
     * @return 0 when the request is queued; 9 for a null pointer; 0xC0090114 for a malformed MAC address; 41 when the
     *         server is not started.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL ChangeClientsHostName(const char* newHostName, const char* macAddress);

    /**
     * Tells the device at an IP address to take a new host name.
     *
     * @param newHostName the name.
     * @param ipAddress   four decimal numbers joined by periods, such as 192.168.1.20. The broadcast address
     *                    255.255.255.255 is no device's: the message leaves, and no device takes the name.
     * @return 0 when the request is queued; 9 for a null pointer; 0xC0090114 for a malformed IP address; 41 when the
     *         server is not started.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL ChangeClientsHostNameWithIP(const char* newHostName,
                                                                           const char* ipAddress);

    /**
     * Asks the device that owns a MAC address for its signature. The message is broadcast, so it reaches devices whose
     * IP address is unknown or does not fit the network.
     *
     * @param macAddress six hexadecimal numbers joined by colons, such as 00:1A:2B:3C:4D:5E.
     * @return 0 when the request is queued; 9 for a null pointer; 0xC0090114 for a malformed MAC address; 41 when the
     *         server is not started.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL RefreshClient(const char* macAddress);

    /**
     * Asks the device at an IP address for its signature.
     *
     * @param ipAddress four decimal numbers joined by periods, such as 192.168.1.20. At the broadcast address
     *                  255.255.255.255 no device answers; for all devices there is Discover.
     * @return 0 when the request is queued; 9 for a null pointer; 0xC0090114 for a malformed IP address; 41 when the
     *         server is not started.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL ReachClient(const char* ipAddress);

    /**
     * Sets what is called for each signature received. A message that is being handled at this moment may still reach
     * the callback set before.
     *
     * @param callback the function; a null pointer for none.
     * @return 0; 30 when the library is not initialized.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL
    SetClientSignatureReceivedEventCallBack(ClientSignatureReceivedEventCallBack callback);

    /**
     * Sets what is called for each Hello received. A message that is being handled at this moment may still reach the
     * callback set before.
     *
     * @param callback the function; a null pointer for none.
     * @return 0; 30 when the library is not initialized.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL
    SetHelloMessageReceivedEventCallBack(HelloMessageReceivedEventCallBack callback);

    /**
     * Sets what is called for each Bye received. A message that is being handled at this moment may still reach the
     * callback set before.
     *
     * @param callback the function; a null pointer for none.
     * @return 0; 30 when the library is not initialized.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL
    SetByeMessageReceivedEventCallBack(ByeMessageReceivedEventCallBack callback);

    /**
     * Makes every broadcast leave once from each of the given local addresses, in their order, instead of once from the
     * interface that the system chooses. An address at which sending fails gets a line in the log and does not hinder
     * the others. Lasts until the next call or StopServer; has an effect only while the server is started, and returns
     * 0 all the same before.
     *
     * @param addressesJson a JSON array of IP addresses of this machine: ["192.168.1.2","10.0.0.2"]. While an empty
     *                      array is installed, broadcasts are not sent at all.
     * @return 0; 9 for a null pointer; 0xC0090114 when the text is not a JSON array or an element is no IP address;
     *         0xC0090109 when an element is no string.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL InitBroadcastProvider(const char* addressesJson);

    /**
     * Sets the oldest protocol version that is accepted: messages of older versions are dropped with a line in the log.
     * Messages of the library's own version, 1.0.18, are always accepted. Holds for the process, before Initialize and
     * after Terminate too.
     *
     * @param version two to four decimal numbers joined by periods, such as 1.0.18; 0.0, the initial value, accepts
     *                every version. A missing number is lower than 0: 1.0 is older than 1.0.0.
     * @return 0; 9 for a null pointer; 0xC0090114 for a malformed version.
     */
    DISCOVERY_EXTC_API int DISCOVERY_EXTC_CALL SetMinCompatibleVersion(const char* version);

#ifdef __cplusplus
}
#endif

#endif
