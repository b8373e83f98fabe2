#pragma once

#include "DiscoveryServer.ExtC.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#if defined(_WIN32)
// As in the system's own header, which brings more macros than a host may want. Link to ole32.
extern "C" __declspec(dllimport) void __stdcall CoTaskMemFree(void* memory);
#endif

/// The library DiscoveryServer.ExtC for C++17 and later: this header and the C header are all there is to it.
namespace Zent::Discovery
{
/// The library's functions: those that the program is linked to, or those of a library loaded at run time.
struct DiscoveryFunctions
{
    /// The functions that the program is linked to. Who does not call it need not be linked to the library.
    static const DiscoveryFunctions& Linked()
    {
        static const DiscoveryFunctions functions = {&::Initialize,
                                                     &::Terminate,
                                                     &::StartServer,
                                                     &::StopServer,
                                                     &::GetErrorMessage,
                                                     &::Discover,
                                                     &::ChangeClientsIPConfigurations,
                                                     &::ChangeClientsHostName,
                                                     &::ChangeClientsHostNameWithIP,
                                                     &::RefreshClient,
                                                     &::ReachClient,
                                                     &::SetClientSignatureReceivedEventCallBack,
                                                     &::SetHelloMessageReceivedEventCallBack,
                                                     &::SetByeMessageReceivedEventCallBack,
                                                     &::InitBroadcastProvider,
                                                     &::SetMinCompatibleVersion};
        return functions;
    }

    /// The library's text of a code. Any thread.
    std::string TextOf(int resultCode) const
    {
        const std::unique_ptr<char, void (*)(char*)> text(GetErrorMessage(resultCode), &Free);
        return text == nullptr ? "no memory is left for the text" : text.get();
    }

    decltype(&::Initialize) Initialize;
    decltype(&::Terminate) Terminate;
    decltype(&::StartServer) StartServer;
    decltype(&::StopServer) StopServer;
    decltype(&::GetErrorMessage) GetErrorMessage;
    decltype(&::Discover) Discover;
    decltype(&::ChangeClientsIPConfigurations) ChangeClientsIPConfigurations;
    decltype(&::ChangeClientsHostName) ChangeClientsHostName;
    decltype(&::ChangeClientsHostNameWithIP) ChangeClientsHostNameWithIP;
    decltype(&::RefreshClient) RefreshClient;
    decltype(&::ReachClient) ReachClient;
    decltype(&::SetClientSignatureReceivedEventCallBack) SetClientSignatureReceivedEventCallBack;
    decltype(&::SetHelloMessageReceivedEventCallBack) SetHelloMessageReceivedEventCallBack;
    decltype(&::SetByeMessageReceivedEventCallBack) SetByeMessageReceivedEventCallBack;
    decltype(&::InitBroadcastProvider) InitBroadcastProvider;
    decltype(&::SetMinCompatibleVersion) SetMinCompatibleVersion;

private:
    static void Free(char* text)
    {
#if defined(_WIN32)
        CoTaskMemFree(text);
#else
        std::free(text);
#endif
    }
};

/// A call that the library has refused. Nothing has changed unless the call says otherwise.
class DiscoveryError : public std::runtime_error
{
public:
    /// Takes the text of the code from the library.
    DiscoveryError(const std::string& function,
                   int resultCode,
                   const DiscoveryFunctions& library = DiscoveryFunctions::Linked())
        : std::runtime_error(function + " failed: " + library.TextOf(resultCode) + " (code " + Show(resultCode) + ")")
        , code(resultCode)
    {
    }

    /// The library's code, such as DiscoveryError::InvalidFormat.
    int Code() const noexcept { return code; }

    /// The text of a code, of the library that the program is linked to.
    static std::string TextOf(int resultCode) { return DiscoveryFunctions::Linked().TextOf(resultCode); }

    /// Codes that a host meets; there are others, too.
    enum : int
    {
        ArgumentNull = DiscoveryResultArgumentNull,
        ArgumentOutOfRange = DiscoveryResultArgumentOutOfRange,
        OutOfMemory = DiscoveryResultOutOfMemory,
        InvalidOperation = DiscoveryResultInvalidOperation, ///< closed, another session is open, or not in a handler
        NullPointer = DiscoveryResultNullPointer, ///< a request while the server is not started, or restarts itself
        IO = DiscoveryResultIO,                   ///< the log cannot be opened, as with the next two
        DirectoryNotFound = DiscoveryResultDirectoryNotFound,
        FileNotFound = DiscoveryResultFileNotFound,
        Socket = DiscoveryResultSocket, ///< the network refused, for instance because UDP port 12001 is taken
        ResourceNotFound = DiscoveryResultResourceNotFound,
        InvalidFormat = DiscoveryResultInvalidFormat ///< not the MAC address, IP address or version that it should be
    };

private:
    static std::string Show(int resultCode)
    {
        char text[16];
        std::snprintf(text, sizeof text, resultCode < 0 ? "0x%08X" : "%u", static_cast<unsigned>(resultCode));
        return text;
    }

    int code;
};

/// New settings of the network interface with a MAC address. The default gateway is empty for none.
struct NICSettings
{
    std::string FriendlyName;
    std::string MACAddress;
    std::string IPAddress;
    std::string SubNetMask;
    std::string DefaultGateway;
    std::string MTU = "Unknown";
};

/// The library in use: from the constructor, which opens the log, until Close or the destructor.
///
/// One session at a time is open in a process. All operations may be called from any thread. Handlers run one at a time
/// on a thread of the library, which sends nothing meanwhile: they should return soon. They may make requests and set
/// handlers; Start, Stop and Close throw DiscoveryError::InvalidOperation there. The destructor must not run in a
/// handler. What a handler throws goes to the handler of failures and no further.
class DiscoverySession final
{
public:
    /// Takes the JSON document of a device, {"Host":{...},"SourceNIC":{...}}, as the C header describes it. The text is
    /// as the device sent it: it may hold bytes that are not UTF-8.
    using Handler = std::function<void(const std::string& hostJson)>;
    using FailureHandler = std::function<void(std::exception_ptr failure)>;

    /// Opens the log, which is continued; missing folders are created. The server is not started yet.
    /// @throws DiscoveryError when the log cannot be opened or another session is open.
    explicit DiscoverySession(const std::string& log, DiscoveryLogLevel level = DiscoveryLogStandard)
        : DiscoverySession(DiscoveryFunctions::Linked(), log, level)
    {
    }

    /// The same with the functions of a library loaded at run time, as DiscoveryLibrary.h loads it; it must stay
    /// loaded.
    DiscoverySession(const DiscoveryFunctions& functions,
                     const std::string& log,
                     DiscoveryLogLevel level = DiscoveryLogStandard)
        : library(functions)
        , logPath(Checked(log))
        , logLevel(level)
    {
        RefuseInHandler("Initialize");
        const std::lock_guard<std::mutex> lifeCycle(Shared().LifeCycle);
        Check("Initialize", Shared().Current == nullptr ? 0 : static_cast<int>(DiscoveryError::InvalidOperation));
        Open();
        Shared().Current = this;
    }

    /// Closes. A failure is lost here: call Close to see it.
    ~DiscoverySession()
    {
        try
        {
            Close();
        }
        catch (const std::exception&)
        {
            SetHandlers({}); // the library is still at work; its messages reach nobody
        }
    }

    DiscoverySession(const DiscoverySession&) = delete;
    DiscoverySession& operator=(const DiscoverySession&) = delete;

    /// Set what is called for a message from now on; an empty function for nothing. Taken away by Close.
    void OnSignature(Handler handler) { SetHandler(&Handlers::Signature, std::move(handler)); }

    void OnHello(Handler handler) { SetHandler(&Handlers::Hello, std::move(handler)); }

    void OnBye(Handler handler) { SetHandler(&Handlers::Bye, std::move(handler)); }

    /// Sets what is told about exceptions of handlers; without it they are written to standard error.
    void OnFailure(FailureHandler handler) { SetHandler(&Handlers::Failure, std::move(handler)); }

    /// Binds UDP port 12001 and starts the server; does nothing when it is started. After a failure the session is as
    /// before, and Start may be tried again.
    void Start()
    {
        RefuseInHandler("StartServer");
        const std::lock_guard<std::mutex> lifeCycle(Shared().LifeCycle);
        CheckOpen("StartServer");
        if (isStarted)
        {
            return;
        }
        ChangeOrReopen("StartServer", library.StartServer);
        isStarted = true;
    }

    /// Stops the server and releases its port; does nothing when it is stopped. Requests that still wait are discarded,
    /// and so is the broadcast provider. Returns after a running handler has returned; none runs afterwards.
    void Stop()
    {
        RefuseInHandler("StopServer");
        const std::lock_guard<std::mutex> lifeCycle(Shared().LifeCycle);
        CheckOpen("StopServer");
        isStarted = false;
        ChangeOrReopen("StopServer", library.StopServer);
    }

    /// Stops the server and closes the log; does nothing when the session is closed. Returns after a running handler
    /// has returned; none runs afterwards.
    void Close()
    {
        RefuseInHandler("Terminate");
        const std::lock_guard<std::mutex> lifeCycle(Shared().LifeCycle);
        if (!SetOpen(false))
        {
            return;
        }
        const int code = library.Terminate();
        if (code != 0)
        {
            SetOpen(true);
            throw DiscoveryError("Terminate", code, library);
        }
        Forget();
    }

    /// Asks every device for its signature.
    void Discover() { Request("Discover", library.Discover); }

    /// Asks the device that owns a MAC address, such as 00:1A:2B:3C:4D:5E, for its signature.
    void RefreshClient(const std::string& macAddress) { Request("RefreshClient", library.RefreshClient, macAddress); }

    /// Asks the device at an IP address for its signature.
    void ReachClient(const std::string& ipAddress) { Request("ReachClient", library.ReachClient, ipAddress); }

    /// Tells the device that owns a MAC address to take a new host name.
    void ChangeClientsHostName(const std::string& newHostName, const std::string& macAddress)
    {
        Request("ChangeClientsHostName", library.ChangeClientsHostName, newHostName, macAddress);
    }

    /// Tells the device at an IP address to take a new host name; at 255.255.255.255 no device takes it.
    void ChangeClientsHostNameWithIP(const std::string& newHostName, const std::string& ipAddress)
    {
        Request("ChangeClientsHostNameWithIP", library.ChangeClientsHostNameWithIP, newHostName, ipAddress);
    }

    /// Tells devices to configure their network interfaces anew: each takes what bears its MAC addresses.
    void ChangeClientsIPConfigurations(const std::vector<NICSettings>& settings)
    {
        std::vector<std::string> objects;
        for (const NICSettings& nic : settings)
        {
            objects.push_back(
                "{\"FriendlyName\":" + Quoted(nic.FriendlyName) + ",\"MACAddress\":" + Quoted(nic.MACAddress) +
                ",\"IPAddress\":" + Quoted(nic.IPAddress) + ",\"SubNetMask\":" + Quoted(nic.SubNetMask) +
                ",\"DefaultGateway\":" + Quoted(nic.DefaultGateway) + ",\"MTU\":" + Quoted(nic.MTU) + "}");
        }
        ChangeClientsIPConfigurationsFromJson(Array(objects));
    }

    /// The same for the JSON array of interfaces that the C header describes.
    void ChangeClientsIPConfigurationsFromJson(const std::string& nicConfigsJson)
    {
        Request("ChangeClientsIPConfigurations", library.ChangeClientsIPConfigurations, nicConfigsJson);
    }

    /// Makes every broadcast leave once from each of these IP addresses of this machine, until the next call or Stop.
    /// Without effect before Start. While there are no addresses, nothing is broadcast.
    void InitBroadcastProvider(const std::vector<std::string>& localAddresses)
    {
        std::vector<std::string> texts;
        for (const std::string& address : localAddresses)
        {
            texts.push_back(Quoted(address));
        }
        Request("InitBroadcastProvider", library.InitBroadcastProvider, Array(texts));
    }

    /// Drops messages of protocol versions older than this, such as 1.0.18; 0.0 takes all. Holds for the process, for
    /// later sessions too.
    void SetMinCompatibleVersion(const std::string& version)
    {
        Request("SetMinCompatibleVersion", library.SetMinCompatibleVersion, version);
    }

private:
    friend class DiscoveryInventorySession; // listens beside the handlers

    enum class MessageKind
    {
        Signature,
        Hello,
        Bye
    };

    using Listener = std::function<void(MessageKind kind, const char* hostJson)>;

    struct Handlers
    {
        Handler Signature;
        Handler Hello;
        Handler Bye;
        FailureHandler Failure;
        std::vector<std::weak_ptr<const Listener>> Listeners;
    };

    /// What the callbacks need: they bear no pointer to a session.
    struct State
    {
        std::mutex LifeCycle; // held by Open, Start, Stop and Close, which may wait for a handler: never taken in one
        DiscoverySession* Current = nullptr;                                         // guarded by LifeCycle
        std::mutex ActiveLock;                                                       // never held while a handler runs
        std::shared_ptr<const Handlers> Active = std::make_shared<const Handlers>(); // guarded by ActiveLock
    };

    /// Never destroyed: the library's threads may outlive the statics of a program that ends without closing.
    static State& Shared()
    {
        static State* const state = new State();
        return *state;
    }

    static bool& IsInHandler() noexcept
    {
        static thread_local bool isInHandler = false;
        return isInHandler;
    }

    static std::shared_ptr<const Handlers> CurrentHandlers()
    {
        const std::lock_guard<std::mutex> lock(Shared().ActiveLock);
        return Shared().Active;
    }

    /// Returns the old ones, which may be in use, to be destroyed outside of all locks.
    static std::shared_ptr<const Handlers> SetHandlers(Handlers handlers)
    {
        auto next = std::make_shared<const Handlers>(std::move(handlers));
        const std::lock_guard<std::mutex> lock(Shared().ActiveLock);
        Shared().Active.swap(next);
        return next;
    }

    template <class TFunction>
    void SetHandler(TFunction Handlers::*slot, TFunction handler)
    {
        ChangeHandlers("Setting a handler", [&](Handlers& handlers) { handlers.*slot = std::move(handler); });
    }

    /// Calls the listener for each message from now on, before the handlers, until its owner destroys it.
    void AddListener(const std::shared_ptr<const Listener>& listener)
    {
        ChangeHandlers("Listening", [&](Handlers& handlers) {
            auto& listeners = handlers.Listeners;
            const auto isOver = [](const std::weak_ptr<const Listener>& each) { return each.expired(); };
            listeners.erase(std::remove_if(listeners.begin(), listeners.end(), isOver), listeners.end());
            listeners.push_back(listener);
        });
    }

    template <class TChange>
    void ChangeHandlers(const char* action, const TChange& change)
    {
        std::shared_ptr<const Handlers> old;
        const std::lock_guard<std::mutex> lock(requestLock);
        Check(action, isOpen ? 0 : static_cast<int>(DiscoveryError::InvalidOperation));
        Handlers handlers = *CurrentHandlers();
        change(handlers);
        old = SetHandlers(std::move(handlers));
    }

    template <MessageKind Kind, Handler Handlers::*Slot>
    static void DISCOVERY_EXTC_CALL Receive(const char* hostJson) noexcept
    {
        IsInHandler() = true;
        try
        {
            const std::shared_ptr<const Handlers> handlers = CurrentHandlers();
            for (const std::weak_ptr<const Listener>& each : handlers->Listeners)
            {
                if (const std::shared_ptr<const Listener> listener = each.lock())
                {
                    Call([&] { (*listener)(Kind, hostJson); }, handlers->Failure);
                }
            }
            if (const Handler& handler = (*handlers).*Slot)
            {
                Call([&] { handler(hostJson); }, handlers->Failure);
            }
        }
        catch (...) // nothing may leave a callback
        {
            std::fputs("DiscoverySession: a message is lost\n", stderr);
        }
        IsInHandler() = false;
    }

    /// What the handler throws goes to the handler of failures, which may throw.
    template <class THandler>
    static void Call(const THandler& handler, const FailureHandler& failure)
    {
        try
        {
            handler();
        }
        catch (const std::exception& exception)
        {
            if (!failure)
            {
                std::fprintf(stderr, "DiscoverySession: a handler has failed: %s\n", exception.what());
                return;
            }
            failure(std::current_exception());
        }
        catch (...)
        {
            if (!failure)
            {
                std::fputs("DiscoverySession: a handler has failed\n", stderr);
                return;
            }
            failure(std::current_exception());
        }
    }

    void Open()
    {
        Check("Initialize with the log " + logPath, library.Initialize(logPath.c_str(), logLevel));
        // Initialized, these cannot fail.
        library.SetClientSignatureReceivedEventCallBack(&Receive<MessageKind::Signature, &Handlers::Signature>);
        library.SetHelloMessageReceivedEventCallBack(&Receive<MessageKind::Hello, &Handlers::Hello>);
        library.SetByeMessageReceivedEventCallBack(&Receive<MessageKind::Bye, &Handlers::Bye>);
        SetOpen(true);
    }

    /// Returns what it was before. Waits for the requests under way, so that none is when the library is terminated.
    bool SetOpen(bool value)
    {
        const std::lock_guard<std::mutex> lock(requestLock);
        return std::exchange(isOpen, value);
    }

    /// The library wants to be terminated and initialized after a failure of these.
    void ChangeOrReopen(const char* name, int(DISCOVERY_EXTC_CALL* function)())
    {
        const int code = function();
        if (code == 0)
        {
            return;
        }
        const DiscoveryError error(name, code, library);
        SetOpen(false);
        if (library.Terminate() != 0)
        {
            SetOpen(true);
            throw error;
        }
        try
        {
            Open();
        }
        catch (const DiscoveryError&)
        {
            Forget(); // the log is gone: what is left is a closed session
        }
        throw error;
    }

    void Forget()
    {
        isStarted = false;
        Shared().Current = nullptr;
        SetHandlers({});
    }

    void CheckOpen(const char* function)
    {
        const std::lock_guard<std::mutex> lock(requestLock);
        Check(function, isOpen ? 0 : static_cast<int>(DiscoveryError::InvalidOperation));
    }

    template <class TFunction, class... TTexts>
    void Request(const char* name, TFunction function, const TTexts&... texts)
    {
        (Checked(texts), ...);
        const std::lock_guard<std::mutex> lock(requestLock);
        Check(name, isOpen ? function(texts.c_str()...) : static_cast<int>(DiscoveryError::InvalidOperation));
    }

    void Check(const std::string& function, int code) const
    {
        if (code != 0)
        {
            throw DiscoveryError(function, code, library);
        }
    }

    // The library refuses these, too, but not before our own lock is taken, whose owner may wait for the handler.
    void RefuseInHandler(const char* function) const
    {
        Check(function, IsInHandler() ? static_cast<int>(DiscoveryError::InvalidOperation) : 0);
    }

    static const std::string& Checked(const std::string& text)
    {
        if (text.find('\0') != std::string::npos)
        {
            throw std::invalid_argument("a text must not contain NUL");
        }
        return text;
    }

    static std::string Array(const std::vector<std::string>& elements)
    {
        std::string json = "[";
        for (const std::string& element : elements)
        {
            json += (json.size() == 1 ? "" : ",") + element;
        }
        return json + "]";
    }

    static std::string Quoted(const std::string& text)
    {
        std::string json = "\"";
        for (const char character : text)
        {
            if (static_cast<unsigned char>(character) < 0x20)
            {
                char escape[8];
                std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(character));
                json += escape;
                continue;
            }
            if (character == '"' || character == '\\')
            {
                json += '\\';
            }
            json += character;
        }
        return json + '"';
    }

    const DiscoveryFunctions library; // constant after construction
    const std::string logPath;        // constant after construction
    const DiscoveryLogLevel logLevel; // constant after construction
    bool isStarted = false;           // guarded by State::LifeCycle
    std::mutex requestLock;           // held during requests, never while a handler runs; taken after LifeCycle
    bool isOpen = false;              // guarded by requestLock
};
} // namespace Zent::Discovery
