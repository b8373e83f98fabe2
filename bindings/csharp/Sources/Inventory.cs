using System;
using System.Collections.Concurrent;
using System.Collections.Generic;
using System.Diagnostics;
using System.IO;
using System.Linq;
using System.Text;
using System.Threading;
using System.Threading.Tasks;

namespace Zent.Discovery
{
    /// <summary>
    /// The devices that a session hears of, what becomes of them, and whether these are all: from the constructor until
    /// <see cref="Dispose"/>, which comes before that of the session.
    /// </summary>
    /// <remarks>
    /// A thread of its own feeds the library DiscoveryInventory, asks devices, and raises the events, one at a time:
    /// handlers should return soon, and must not wait for a search or a change. What they throw goes to
    /// <see cref="HandlerFailed"/>, or to the trace listeners when that has no handler, and goes no further.
    /// All members may be used from any thread, but Dispose not in a handler of the session.
    /// </remarks>
    public sealed class Inventory : IDisposable
    {
        /// <summary>The environment variable that names the library's file for inventories without a path.</summary>
        public const string LibraryVariable = "DISCOVERY_INVENTORY_LIBRARY";

        private const int BatchTime = 20; // milliseconds, in which messages are collected
        private const int LongestWait = 1000;

        private readonly DiscoverySession session;
        private readonly InventoryLibrary library;
        private readonly IList<string> networks;
        private readonly DateTimeOffset start = DateTimeOffset.Now;
        private readonly Stopwatch clock = Stopwatch.StartNew();
        private readonly BlockingCollection<Message> messages = new BlockingCollection<Message>(); // null wakes
        private readonly Thread thread;
        private readonly object native = new object(); // guards the three that follow, and all calls with the handle
        private IntPtr handle;
        private List<TaskCompletionSource<SearchResult>> searches = new List<TaskCompletionSource<SearchResult>>();
        private readonly Dictionary<long, TaskCompletionSource<ChangeOutcome>> changes =
            new Dictionary<long, TaskCompletionSource<ChangeOutcome>>();
        private volatile bool isClosing;
        private volatile bool isPortHeld; // written by the thread

        /// <summary>Begins to listen; unless the options say otherwise all devices are asked soon and again.</summary>
        /// <param name="session">The session, which the host starts and disposes of.</param>
        /// <param name="options">How to go about the devices; null for the usual way.</param>
        /// <param name="libraryPath">
        /// The library's file. Without it the environment variable DISCOVERY_INVENTORY_LIBRARY names it; without that it
        /// is taken from the program's folder, as packages put it there, or wherever the system finds it.
        /// </param>
        /// <exception cref="ArgumentException">An option is not possible; the text names it.</exception>
        /// <exception cref="IOException">The journal cannot be read.</exception>
        /// <exception cref="DllNotFoundException">The library cannot be loaded.</exception>
        /// <exception cref="EntryPointNotFoundException">It is another library.</exception>
        public Inventory(DiscoverySession session, InventoryOptions options = null, string libraryPath = null)
        {
            if (session == null)
            {
                throw new ArgumentNullException(nameof(session));
            }
            options = options ?? new InventoryOptions();
            this.session = session;
            networks = options.Networks?.ToArray();
            library = new InventoryLibrary(libraryPath);
            library.Check(library.Create(Document(options), out handle));
            try
            {
                bool hasJournal = !string.IsNullOrEmpty(options.Journal);
                foreach (string line in hasJournal ? ReadJournal(null).Broken : new string[0])
                {
                    Trace.TraceWarning(line);
                }
                thread = new Thread(Run) { IsBackground = true, Name = "discovery inventory" };
                thread.Start();
            }
            catch
            {
                library.Free(handle); // nobody can dispose of what was not made
                throw;
            }
            session.DocumentReceived += Listen;
        }

        /// <summary>A device was heard for the first time.</summary>
        public event EventHandler<DeviceEventArgs> Appeared;

        /// <summary>A device tells something else than before.</summary>
        public event EventHandler<DeviceChangedEventArgs> Changed;

        /// <summary>A device has said Bye.</summary>
        public event EventHandler<DeviceEventArgs> Left;

        /// <summary>A device answers no more.</summary>
        public event EventHandler<DeviceEventArgs> Gone;

        /// <summary>A device that was gone or had left is heard again, perhaps with changes.</summary>
        public event EventHandler<DeviceChangedEventArgs> Returned;

        /// <summary>A device comes and goes; that is not told any more until it has settled.</summary>
        public event EventHandler<DeviceEventArgs> Flapping;

        /// <summary>A device that came and went has been steady for a while.</summary>
        public event EventHandler<DeviceEventArgs> Settled;

        /// <summary>A device gave way to another one: there are too many.</summary>
        public event EventHandler<DeviceEventArgs> Forgotten;

        /// <summary>Devices cannot all be as they say.</summary>
        public event EventHandler<ConflictEventArgs> Conflict;

        /// <summary>A handler of one of the other events has thrown.</summary>
        public event EventHandler<HandlerFailedEventArgs> HandlerFailed;

        /// <summary>All devices that are known, in the order in which they were first seen; none after Dispose.</summary>
        public IList<KnownDevice> Devices
        {
            get
            {
                byte[] snapshot;
                lock (native)
                {
                    if (handle == IntPtr.Zero)
                    {
                        return new KnownDevice[0];
                    }
                    snapshot = ReadText(library.Snapshot);
                }
                return ReadDevices(snapshot);
            }
        }

        /// <summary>The changes that the journal has, the oldest first.</summary>
        /// <exception cref="InvalidOperationException">The inventory keeps no journal, or is closed.</exception>
        /// <exception cref="IOException">The journal cannot be read.</exception>
        public IList<JournalEntry> Journal => ReadJournal(null).Entries;

        /// <summary>
        /// Whether another program receives what devices send, too; then none is told to be gone. While this machine
        /// has lost all its networks (tunnels, point-to-point and container interfaces do not count), the inventory
        /// asks nobody by itself, and none is told to be gone either.
        /// </summary>
        public bool IsPortHeld => isPortHeld;

        /// <summary>
        /// Searches until all devices are found; the task fails with an <see cref="IncompleteSearchException"/> when the
        /// time is over before. A search that runs gives way, and has the same result. Dispose cancels it.
        /// </summary>
        /// <param name="wait">After which time it ends at the latest; null for ten seconds.</param>
        /// <param name="sweep">
        /// Whether the addresses of the networks may be asked one by one when answers were lost.
        /// </param>
        /// <param name="also">Addresses elsewhere to ask one by one, such as 10.2.0.5 and 10.2.1.0/26.</param>
        /// <exception cref="ArgumentException">An argument is not possible; the text names it.</exception>
        /// <exception cref="ObjectDisposedException">The inventory is closed.</exception>
        public Task<SearchResult> DiscoverAsync(TimeSpan? wait = null, bool sweep = true,
                                                IEnumerable<string> also = null)
        {
            byte[] options = Document(new InventoryDocuments.SearchOptions
            {
                Wait = (long?)wait?.TotalMilliseconds,
                Sweep = sweep,
                Networks = networks,
                Also = also?.ToArray()
            });
            // What awaits the result must not run on the thread that finds it.
            var search = new TaskCompletionSource<SearchResult>(TaskCreationOptions.RunContinuationsAsynchronously);
            lock (native)
            {
                if (isClosing || handle == IntPtr.Zero)
                {
                    throw new ObjectDisposedException(nameof(Inventory));
                }
                library.Check(library.StartSearch(handle, options, clock.ElapsedMilliseconds));
                searches.Add(search);
            }
            messages.Add(null);
            return search.Task;
        }

        /// <summary>
        /// Gives the device with a MAC address a new host name; the task fails with a
        /// <see cref="ChangeFailedException"/> when the device does not come to have it. Dispose cancels it.
        /// </summary>
        /// <exception cref="ArgumentException">An argument is not possible; the text names it.</exception>
        /// <exception cref="ObjectDisposedException">The inventory is closed.</exception>
        public Task<ChangeOutcome> RenameAsync(string newHostName, string macAddress, ChangeOptions options = null)
        {
            return ChangeAsync(Request("MACAddress", macAddress, "HostName", newHostName), options);
        }

        /// <summary>The same for the device at an IP address, which broadcasts need not reach.</summary>
        public Task<ChangeOutcome> RenameAtAsync(string newHostName, string ipAddress, ChangeOptions options = null)
        {
            return ChangeAsync(Request("IPAddress", ipAddress, "HostName", newHostName), options);
        }

        /// <summary>The same for the settings of the interface that has their MAC address.</summary>
        public Task<ChangeOutcome> ConfigureAsync(Nic settings, ChangeOptions options = null)
        {
            if (settings == null)
            {
                throw new ArgumentNullException(nameof(settings));
            }
            return ChangeAsync(settings, options);
        }

        /// <summary>
        /// Gives a device back what it had before a change, whatever has come of that one. The task ends as that of
        /// <see cref="RenameAsync"/> does.
        /// </summary>
        /// <exception cref="ArgumentException">It is not known what the device had.</exception>
        public Task<ChangeOutcome> UndoAsync(ChangeOutcome outcome, ChangeOptions options = null)
        {
            if (outcome?.UndoRequest == null)
            {
                throw new ArgumentException("it is not known what the device had before the change", nameof(outcome));
            }
            return UndoAsync(outcome.UndoRequest, outcome.Entry, options);
        }

        /// <summary>
        /// The same for the newest change of the journal that is not taken back, as after the host has started anew. An
        /// exchange of names or addresses takes a call for each of its changes, the newest first.
        /// </summary>
        /// <param name="macAddress">Of the interface whose change is meant; null for any.</param>
        /// <param name="options">How to change; null for the usual way.</param>
        /// <exception cref="InvalidOperationException">
        /// There is no such change, the inventory keeps no journal, or is closed.
        /// </exception>
        /// <exception cref="IOException">The journal cannot be read.</exception>
        public Task<ChangeOutcome> UndoNewestAsync(string macAddress = null, ChangeOptions options = null)
        {
            InventoryDocuments.NewestChange newest = ReadJournal(macAddress).Newest;
            if (newest == null)
            {
                throw new InvalidOperationException("the journal has no change to undo");
            }
            return UndoAsync(newest.Request, newest.Entry.Id, options);
        }

        /// <summary>
        /// Ends the inventory; does nothing when that is done. Returns after a running handler has returned, except in
        /// one; none runs afterwards.
        /// </summary>
        public void Dispose()
        {
            session.DocumentReceived -= Listen;
            isClosing = true;
            messages.Add(null);
            if (Thread.CurrentThread != thread)
            {
                thread.Join();
            }
        }

        private static IDictionary<string, string> Request(string key, string address, string property, string value)
        {
            return new Dictionary<string, string> { { key, address }, { property, value } };
        }

        private Task<ChangeOutcome> UndoAsync(IDictionary<string, string> request, string entry, ChangeOptions options)
        {
            return ChangeAsync(request, new ChangeOptions
            {
                Look = false,
                Timeout = options?.Timeout,
                RebootTimeout = options?.RebootTimeout,
                Force = options?.Force ?? false,
                GivesBack = true,
                Undoes = entry
            });
        }

        private InventoryDocuments.KeptChanges ReadJournal(string macAddress)
        {
            byte[] mac = NativeLibrary.Bytes(macAddress ?? "", nameof(macAddress));
            lock (native)
            {
                if (handle == IntPtr.Zero)
                {
                    throw new ObjectDisposedException(nameof(Inventory));
                }
                library.Check(library.KeptChanges(handle, mac, out IntPtr text));
                if (text == IntPtr.Zero)
                {
                    throw new InvalidOperationException("the inventory keeps no journal");
                }
                return Json.Read<InventoryDocuments.KeptChanges>(NativeLibrary.TextBytes(text));
            }
        }

        private Task<ChangeOutcome> ChangeAsync<T>(T request, ChangeOptions options)
        {
            byte[] requestText = Document(request);
            byte[] optionsText = Document(options ?? new ChangeOptions());
            var change = new TaskCompletionSource<ChangeOutcome>(TaskCreationOptions.RunContinuationsAsynchronously);
            lock (native)
            {
                if (isClosing || handle == IntPtr.Zero)
                {
                    throw new ObjectDisposedException(nameof(Inventory));
                }
                library.Check(library.StartChange(
                    handle, requestText, optionsText, clock.ElapsedMilliseconds, out long id));
                changes.Add(id, change);
            }
            messages.Add(null);
            return change.Task;
        }

        private static byte[] Document<T>(T options)
        {
            return NativeLibrary.Bytes(Json.Write(options), nameof(options));
        }

        private void Listen(MessageKind kind, byte[] document)
        {
            messages.Add(new Message { Kind = kind, Document = document.Concat(new byte[1]).ToArray() });
        }

        private void Run()
        {
            int wait = 0;
            while (!isClosing)
            {
                List<Message> batch = TakeMessages(wait);
                try
                {
                    wait = Work(batch);
                }
                catch (Exception exception) // such as one for want of memory
                {
                    Handlers.Report(exception, this, HandlerFailed);
                    wait = LongestWait;
                }
            }
            lock (native)
            {
                library.Free(handle);
                handle = IntPtr.Zero;
                searches.ForEach(search => search.TrySetCanceled());
                changes.Values.ToList().ForEach(change => change.TrySetCanceled());
            }
        }

        // Waits for one and then for those that come with it.
        private List<Message> TakeMessages(int wait)
        {
            var batch = new List<Message>();
            if (messages.TryTake(out Message message, wait))
            {
                Thread.Sleep(BatchTime);
                do
                {
                    batch.Add(message);
                } while (messages.TryTake(out message));
            }
            batch.RemoveAll(each => each == null);
            return batch;
        }

        // Returns how many milliseconds nothing is to be done unless a message comes. Handlers, and requests to the
        // session, wait for no lock of ours.
        private int Work(List<Message> batch)
        {
            var wishes = new List<TakenWish>();
            var events = new List<byte[]>();
            List<TaskCompletionSource<SearchResult>> ended = null;
            byte[] report = null;
            byte[] snapshot = null;
            long nextTime;
            lock (native)
            {
                batch.ForEach(Feed);
                library.Check(library.AdvanceTime(handle, clock.ElapsedMilliseconds));
                TakeWishes(wishes);
                library.Check(library.NextTime(handle, out nextTime));
                for (byte[] text = ReadText(library.NextEvent); text != null; text = ReadText(library.NextEvent))
                {
                    events.Add(text);
                }
                if (searches.Count > 0 && (report = ReadEndedSearch()) != null)
                {
                    ended = searches;
                    searches = new List<TaskCompletionSource<SearchResult>>();
                    snapshot = ReadText(library.Snapshot);
                }
            }
            foreach (TakenWish wish in wishes)
            {
                bool isTaken = CarryOut(wish);
                if (wish.Kind >= WishKind.Rename && wish.Kind <= WishKind.Configure)
                {
                    lock (native)
                    {
                        library.Check(library.AnswerWish(handle, wish.Id, isTaken ? 1 : 0));
                    }
                    nextTime = 0; // the change goes on at once
                }
            }
            events.ForEach(Tell);
            if (ended != null)
            {
                End(ended, report, snapshot);
            }
            return (int)Math.Min(Math.Max(nextTime - clock.ElapsedMilliseconds, 1), LongestWait);
        }

        private void Feed(Message message)
        {
            try
            {
                library.Check(library.Feed(handle, (int)message.Kind, message.Document, clock.ElapsedMilliseconds));
            }
            catch (ArgumentException exception)
            {
                Trace.TraceWarning("unreadable message left out: {0}", exception.Message);
            }
        }

        private void TakeWishes(List<TakenWish> wishes)
        {
            while (true)
            {
                library.Check(library.NextWish(handle, out Wish wish));
                if (wish.Kind == WishKind.None)
                {
                    return;
                }
                library.Check(library.WishText(handle, out IntPtr text, out _));
                wishes.Add(new TakenWish
                {
                    Kind = wish.Kind,
                    Id = wish.Id,
                    Address = NativeLibrary.Text(wish.Address),
                    Text = NativeLibrary.TextBytes(text)
                });
            }
        }

        // Whether the library has taken the request. It does not while the server is stopped, for instance.
        private bool CarryOut(TakenWish wish)
        {
            try
            {
                switch (wish.Kind)
                {
                    case WishKind.AskAll:
                        session.Discover();
                        return true;
                    case WishKind.AskMac:
                        session.RefreshClient(wish.Address);
                        return true;
                    case WishKind.AskIP:
                        session.ReachClient(wish.Address);
                        return true;
                    case WishKind.Rename:
                        session.ChangeClientsHostName(Encoding.UTF8.GetString(wish.Text), wish.Address);
                        return true;
                    case WishKind.RenameAt:
                        session.ChangeClientsHostNameWithIP(Encoding.UTF8.GetString(wish.Text), wish.Address);
                        return true;
                    case WishKind.Configure:
                        session.ChangeClientsIPConfigurations(Json.Read<Nic[]>(wish.Text));
                        return true;
                    default:
                        return false;
                }
            }
            catch (DiscoveryException)
            {
                return false;
            }
        }

        private void Tell(byte[] text)
        {
            try
            {
                var what = Json.Read<InventoryDocuments.Event>(text);
                if (!isClosing)
                {
                    Raise(what);
                }
            }
            catch (Exception exception)
            {
                Handlers.Report(exception, this, HandlerFailed);
            }
        }

        private void Raise(InventoryDocuments.Event what)
        {
            switch (what.Kind)
            {
                case "Appeared": Raise(Appeared, what.Device); break;
                case "Changed": Raise(Changed, Change(what)); break;
                case "Left": Raise(Left, what.Device); break;
                case "Gone": Raise(Gone, what.Device); break;
                case "Returned": Raise(Returned, Change(what)); break;
                case "Flapping": Raise(Flapping, what.Device); break;
                case "Settled": Raise(Settled, what.Device); break;
                case "Forgotten": Raise(Forgotten, what.Device); break;
                case "Conflict": Raise(Conflict, what.Conflict); break;
                case "ChangeEnded": End(what); break;
                case "PortHeld": isPortHeld = true; break;
                case "PortReleased": isPortHeld = false; break;
            }
        }

        private void Raise<T>(EventHandler<T> handlers, T args)
        {
            Handlers.Raise(handlers, this, args, HandlerFailed);
        }

        private static DeviceChangedEventArgs Change(InventoryDocuments.Event what)
        {
            return new DeviceChangedEventArgs(what.Device, what.Changes ?? new Difference[0]);
        }

        // Null when there is none.
        private byte[] ReadText(GetTextFunction function)
        {
            library.Check(function(handle, out IntPtr text));
            return text == IntPtr.Zero ? null : NativeLibrary.TextBytes(text);
        }

        // The report; null while it runs.
        private byte[] ReadEndedSearch()
        {
            library.Check(library.SearchState(handle, out int isOver, out IntPtr text));
            return isOver == 0 ? null : NativeLibrary.TextBytes(text);
        }

        private void End(List<TaskCompletionSource<SearchResult>> ended, byte[] report, byte[] snapshot)
        {
            try
            {
                var result = Json.Read<SearchResult>(report);
                result.Devices = ReadDevices(snapshot).Where(device => device.IsHere).ToArray();
                if (!result.IsComplete)
                {
                    throw new IncompleteSearchException(result);
                }
                ended.ForEach(search => search.TrySetResult(result));
            }
            catch (Exception exception)
            {
                ended.ForEach(search => search.TrySetException(exception));
            }
        }

        private void End(InventoryDocuments.Event what)
        {
            TaskCompletionSource<ChangeOutcome> change;
            lock (native)
            {
                change = changes[what.Id];
                changes.Remove(what.Id);
            }
            what.Change.UndoRequest = what.Undo;
            what.Change.Entry = what.Entry;
            if (what.Change.Verdict == Verdict.Applied)
            {
                change.TrySetResult(what.Change);
            }
            else
            {
                change.TrySetException(new ChangeFailedException(what.Change));
            }
        }

        private IList<KnownDevice> ReadDevices(byte[] snapshot)
        {
            var document = Json.Read<InventoryDocuments.Snapshot>(snapshot);
            return document.Devices.Select(row => new KnownDevice(row, start)).ToArray();
        }

        private sealed class TakenWish
        {
            public WishKind Kind;
            public long Id;
            public string Address;
            public byte[] Text;
        }

        private sealed class Message
        {
            public MessageKind Kind;
            public byte[] Document; // ends with NUL
        }
    }
}
