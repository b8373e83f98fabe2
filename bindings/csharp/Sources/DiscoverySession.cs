using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.IO;
using System.Linq;
using System.Threading;

namespace Zent.Discovery
{
    /// <summary>
    /// The library in use: from the constructor, which opens the log, until <see cref="Dispose"/>.
    /// </summary>
    /// <remarks>
    /// One session at a time is open in a process. A session that nobody disposes of is closed when the process ends;
    /// until then it stays open even when no variable refers to it. All members may be used from any thread.
    ///
    /// Events are raised one at a time on a thread of the library, which sends nothing meanwhile: handlers should return
    /// soon. They may make requests; Start, Stop and Dispose throw a <see cref="DiscoveryException"/> with
    /// <see cref="DiscoveryErrorCode.InvalidOperation"/> there. What a handler throws goes to
    /// <see cref="HandlerFailed"/>, or to the trace listeners when that has no handler, and goes no further.
    /// </remarks>
    public sealed class DiscoverySession : IDisposable
    {
        /// <summary>The environment variable that names the library's file for sessions without a path.</summary>
        public const string LibraryVariable = "DISCOVERY_LIBRARY";

        // Held during Initialize, StartServer, StopServer and Terminate, which may wait for a handler: never taken in one.
        private static readonly object LifeCycle = new object();

        // Keeps sessions, and with them the delegates that the library calls, from being collected. By LifeCycle.
        private static readonly List<DiscoverySession> OpenSessions = new List<DiscoverySession>();

        [ThreadStatic]
        private static bool isInHandler;

        private readonly DiscoveryLibrary library;
        private readonly byte[] logPath;
        private readonly LogLevel logLevel;
        private readonly HostCallback signatureCallback;
        private readonly HostCallback helloCallback;
        private readonly HostCallback byeCallback;
        private readonly object requests = new object(); // held during requests, never while a handler runs
        private bool isOpen;                             // guarded by requests
        private bool isStarted;                          // guarded by LifeCycle

        static DiscoverySession()
        {
            // A callback that comes when the runtime is gone would find nothing to run in.
            AppDomain.CurrentDomain.ProcessExit += (sender, args) => CloseAll();
            AppDomain.CurrentDomain.DomainUnload += (sender, args) => CloseAll();
        }

        /// <summary>Loads the library and opens the log; the server is not started yet.</summary>
        /// <param name="logPath">The log file, which is continued; missing folders are created.</param>
        /// <param name="logLevel">How much goes into the log.</param>
        /// <param name="libraryPath">
        /// The library's file. Without it the environment variable DISCOVERY_LIBRARY names it; without that it is taken
        /// from the program's folder, as packages put it there, or wherever the system finds it.
        /// </param>
        /// <exception cref="DllNotFoundException">The library cannot be loaded.</exception>
        /// <exception cref="EntryPointNotFoundException">It is another library.</exception>
        /// <exception cref="DiscoveryException">The log cannot be opened, or another session is open.</exception>
        public DiscoverySession(string logPath, LogLevel logLevel = LogLevel.Standard, string libraryPath = null)
        {
            this.logPath = DiscoveryLibrary.Bytes(logPath, nameof(logPath));
            this.logLevel = logLevel;
            library = new DiscoveryLibrary(libraryPath);
            signatureCallback = document => Receive(MessageKind.Signature, document, SignatureReceived);
            helloCallback = document => Receive(MessageKind.Hello, document, HelloReceived);
            byeCallback = document => Receive(MessageKind.Bye, document, ByeReceived);
            RefuseInHandler("Initialize");
            lock (LifeCycle)
            {
                if (OpenSessions.Any(session => session.library.Handle == library.Handle))
                {
                    throw InvalidOperation("Initialize");
                }
                Open();
                OpenSessions.Add(this);
            }
        }

        /// <summary>A device has sent its signature: the answer to a request, or news of a change.</summary>
        public event EventHandler<DeviceEventArgs> SignatureReceived;

        /// <summary>A device has announced itself, usually because it has started.</summary>
        public event EventHandler<DeviceEventArgs> HelloReceived;

        /// <summary>A device has taken its leave.</summary>
        public event EventHandler<DeviceEventArgs> ByeReceived;

        /// <summary>A handler of one of the other events has thrown.</summary>
        public event EventHandler<HandlerFailedEventArgs> HandlerFailed;

        // Raised with the documents as they come, on the library's thread, before the other events; must not throw.
        internal event Action<MessageKind, byte[]> DocumentReceived;

        /// <summary>
        /// Binds UDP port 12001 and starts the server; does nothing when it is started. After a failure the session is
        /// as before, and Start may be tried again.
        /// </summary>
        public void Start()
        {
            RefuseInHandler("StartServer");
            lock (LifeCycle)
            {
                CheckOpen("StartServer");
                if (isStarted)
                {
                    return;
                }
                ChangeOrReopen("StartServer", library.StartServer);
                isStarted = true;
            }
        }

        /// <summary>
        /// Stops the server and releases its port; does nothing when it is stopped. Requests that still wait are
        /// discarded, and so is the broadcast provider. Returns after a running handler has returned; none runs
        /// afterwards.
        /// </summary>
        public void Stop()
        {
            RefuseInHandler("StopServer");
            lock (LifeCycle)
            {
                CheckOpen("StopServer");
                isStarted = false;
                ChangeOrReopen("StopServer", library.StopServer);
            }
        }

        /// <summary>
        /// Stops the server and closes the log; does nothing when that is done. Returns after a running handler has
        /// returned; none runs afterwards.
        /// </summary>
        public void Dispose()
        {
            RefuseInHandler("Terminate");
            lock (LifeCycle)
            {
                if (!SetOpen(false))
                {
                    return;
                }
                int code = library.Terminate();
                if (code != 0)
                {
                    SetOpen(true);
                    throw library.Error("Terminate", code);
                }
                OpenSessions.Remove(this);
            }
        }

        /// <summary>Asks every device for its signature.</summary>
        public void Discover()
        {
            Request("Discover", () => library.Discover());
        }

        /// <summary>Asks the device that owns a MAC address, such as 00:1A:2B:3C:4D:5E, for its signature.</summary>
        public void RefreshClient(string macAddress)
        {
            byte[] address = DiscoveryLibrary.Bytes(macAddress, nameof(macAddress));
            Request("RefreshClient", () => library.RefreshClient(address));
        }

        /// <summary>Asks the device at an IP address for its signature.</summary>
        public void ReachClient(string ipAddress)
        {
            byte[] address = DiscoveryLibrary.Bytes(ipAddress, nameof(ipAddress));
            Request("ReachClient", () => library.ReachClient(address));
        }

        /// <summary>Tells the device that owns a MAC address to take a new host name.</summary>
        public void ChangeClientsHostName(string newHostName, string macAddress)
        {
            byte[] name = DiscoveryLibrary.Bytes(newHostName, nameof(newHostName));
            byte[] address = DiscoveryLibrary.Bytes(macAddress, nameof(macAddress));
            Request("ChangeClientsHostName", () => library.ChangeClientsHostName(name, address));
        }

        /// <summary>
        /// Tells the device at an IP address to take a new host name; at 255.255.255.255 no device takes it.
        /// </summary>
        public void ChangeClientsHostNameWithIP(string newHostName, string ipAddress)
        {
            byte[] name = DiscoveryLibrary.Bytes(newHostName, nameof(newHostName));
            byte[] address = DiscoveryLibrary.Bytes(ipAddress, nameof(ipAddress));
            Request("ChangeClientsHostNameWithIP", () => library.ChangeClientsHostNameWithIP(name, address));
        }

        /// <summary>
        /// Tells devices to configure their network interfaces anew: each takes what bears its MAC addresses.
        /// </summary>
        public void ChangeClientsIPConfigurations(IEnumerable<Nic> settings)
        {
            byte[] document = DiscoveryLibrary.Bytes(Json.Write(settings.ToArray()), nameof(settings));
            Request("ChangeClientsIPConfigurations", () => library.ChangeClientsIPConfigurations(document));
        }

        /// <summary>
        /// Makes every broadcast leave once from each of these IP addresses of this machine, until the next call or
        /// Stop. Without effect before Start. While there are no addresses, nothing is broadcast.
        /// </summary>
        public void InitBroadcastProvider(params string[] localAddresses)
        {
            byte[] document = DiscoveryLibrary.Bytes(Json.Write(localAddresses), nameof(localAddresses));
            Request("InitBroadcastProvider", () => library.InitBroadcastProvider(document));
        }

        /// <summary>
        /// Drops messages of protocol versions older than this, such as 1.0.18; 0.0 takes all. Holds for the process,
        /// for later sessions too.
        /// </summary>
        public void SetMinCompatibleVersion(string version)
        {
            byte[] text = DiscoveryLibrary.Bytes(version, nameof(version));
            Request("SetMinCompatibleVersion", () => library.SetMinCompatibleVersion(text));
        }

        private static void CloseAll()
        {
            DiscoverySession[] sessions;
            lock (LifeCycle)
            {
                sessions = OpenSessions.ToArray();
            }
            foreach (DiscoverySession session in sessions)
            {
                try
                {
                    session.Dispose();
                }
                catch (DiscoveryException exception)
                {
                    Trace.TraceError("cannot close a session at the end of the process: {0}", exception);
                }
            }
        }

        private void Open()
        {
            library.Check("Initialize", library.Initialize(logPath, (int)logLevel));
            // Initialized, these cannot fail.
            library.SetClientSignatureReceivedEventCallBack(signatureCallback);
            library.SetHelloMessageReceivedEventCallBack(helloCallback);
            library.SetByeMessageReceivedEventCallBack(byeCallback);
            SetOpen(true);
        }

        // Returns what it was before. Waits for the requests under way, so that none is when the library is terminated.
        private bool SetOpen(bool value)
        {
            lock (requests)
            {
                bool before = isOpen;
                isOpen = value;
                return before;
            }
        }

        // The library wants to be terminated and initialized after a failure of these.
        private void ChangeOrReopen(string name, PlainFunction function)
        {
            int code = function();
            if (code == 0)
            {
                return;
            }
            DiscoveryException error = library.Error(name, code);
            SetOpen(false);
            if (library.Terminate() == 0)
            {
                try
                {
                    Open();
                }
                catch (DiscoveryException)
                {
                    OpenSessions.Remove(this); // the log is gone: what is left is a closed session
                }
            }
            else
            {
                SetOpen(true);
            }
            throw error;
        }

        private void CheckOpen(string function)
        {
            lock (requests)
            {
                if (!isOpen)
                {
                    throw InvalidOperation(function);
                }
            }
        }

        private void Request(string name, Func<int> function)
        {
            lock (requests)
            {
                library.Check(name, isOpen ? function() : (int)DiscoveryErrorCode.InvalidOperation);
            }
        }

        // The library refuses these, too, but not before our own lock is taken, whose owner may wait for the handler.
        private void RefuseInHandler(string function)
        {
            if (isInHandler)
            {
                throw InvalidOperation(function);
            }
        }

        private DiscoveryException InvalidOperation(string function)
        {
            return library.Error(function, (int)DiscoveryErrorCode.InvalidOperation);
        }

        // Nothing may leave a callback: an exception that does ends the process.
        private void Receive(MessageKind kind, IntPtr text, EventHandler<DeviceEventArgs> handlers)
        {
            isInHandler = true;
            try
            {
                byte[] document = NativeLibrary.TextBytes(text);
                DocumentReceived?.Invoke(kind, document);
                if (handlers != null)
                {
                    var args = Json.Read<DeviceEventArgs>(document);
                    Handlers.Raise(handlers, this, args, HandlerFailed);
                }
            }
            catch (Exception exception)
            {
                Handlers.Report(exception, this, HandlerFailed);
            }
            finally
            {
                isInHandler = false;
            }
        }
    }
}
