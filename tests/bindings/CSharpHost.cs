// A host program in C# for BindingTest.py: CSharpHost.exe LIBRARY, which is empty for the system to find it

using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Runtime.Serialization.Json;
using System.Text;
using System.Threading;
using System.Threading.Tasks;
using Zent.Discovery;

static class CSharpHost
{
    static readonly object Output = new object();
    static readonly Stream StandardOutput = Console.OpenStandardOutput();
    static readonly Dictionary<string, string> Actions = new Dictionary<string, string>();
    static readonly ManualResetEvent Released = new ManualResetEvent(false);
    static string library;
    static string[] addresses;
    static DiscoverySession session;
    static Inventory inventory;
    static ChangeOutcome last;

    static readonly Dictionary<string, Action<string[]>> Commands = new Dictionary<string, Action<string[]>>
    {
        { "open", Open },
        { "second", words => new DiscoverySession(words[0], LogLevel.Debug, library) },
        { "start", words => Start() },
        { "stop", words => session.Stop() },
        { "close", words => session.Dispose() },
        { "close-in-background", words => CloseInBackground() },
        { "discover", words => session.Discover() },
        { "refresh", words => session.RefreshClient(words[0]) },
        { "reach", words => session.ReachClient(words[0]) },
        { "rename", words => session.ChangeClientsHostName(words[0].Replace("\\0", "\0"), words[1]) },
        { "rename-ip", words => session.ChangeClientsHostNameWithIP(words[0], words[1]) },
        { "configure", Configure },
        { "provider", words => session.InitBroadcastProvider(words) },
        { "min-version", words => session.SetMinCompatibleVersion(words[0]) },
        { "inventory", words => Watch(int.Parse(words[0]), words.Skip(1).FirstOrDefault()) },
        { "search", Search },
        { "devices", words => Say("devices" + Listed(inventory.Devices)) },
        { "give-name", words => Change(() => inventory.RenameAsync(words[0], words[1])) },
        { "give-name-in-background", words => Task.Run(() => Commands["give-name"](words)) },
        { "give-back", words => Change(() => inventory.UndoAsync(last)) },
        { "give-back-newest", words => Change(() => inventory.UndoNewestAsync(words[0])) },
        { "journal", words => Say("journal" + string.Concat(inventory.Journal.Select(each =>
            " " + each.MacAddress + (each.IsOpen ? ":open" : each.IsUndone ? ":undone" : ":done")))) },
        { "held", words => Say(inventory.IsPortHeld ? "held yes" : "held no") },
        { "on", words => { lock (Actions) Actions[words[0]] = words[1]; } },
        { "release", words => Released.Set() },
        { "collect", words => { GC.Collect(); GC.WaitForPendingFinalizers(); } },
    };

    static void Main(string[] arguments)
    {
        library = arguments.FirstOrDefault();
        Say("ready");
        var input = new StreamReader(Console.OpenStandardInput(), new UTF8Encoding(false));
        for (string line = input.ReadLine(); line != null; line = input.ReadLine())
        {
            string[] words = line.Split('\t');
            Say("= " + Outcome(() => Commands[words[0]](words.Skip(1).ToArray())));
        }
    }

    static void Open(string[] words)
    {
        addresses = words.Skip(1).ToArray();
        session = new DiscoverySession(words[0], LogLevel.Debug, library);
        session.SignatureReceived += (sender, args) => Handle("signature", args);
        session.HelloReceived += (sender, args) => Handle("hello", args);
        session.ByeReceived += (sender, args) => Handle("bye", args);
        session.HandlerFailed += (sender, args) => Say("reported " + args.Exception.Message);
    }

    static void Start()
    {
        session.Start();
        session.InitBroadcastProvider(addresses);
    }

    static void Watch(int askEvery, string journal)
    {
        inventory = new Inventory(session, new InventoryOptions { AskEvery = askEvery, Journal = journal });
        inventory.Appeared += (sender, args) =>
        {
            Say("appeared " + args.Device.HostName);
            Act("appeared");
        };
        inventory.Changed += (sender, args) => Say("changed " + string.Join(
            ", ", args.Differences.Select(each => each.Property + " " + each.Before + " " + each.After)));
        inventory.Left += (sender, args) => Say("left " + args.Device.HostName);
        inventory.Conflict += (sender, args) => Say(string.Join(
            " ", "conflict", args.Kind, args.Value, args.First.Device.SerialNumber, args.Second.Device.SerialNumber));
        inventory.HandlerFailed += (sender, args) => Say("reported " + args.Exception.Message);
    }

    static void Change(Func<Task<ChangeOutcome>> start)
    {
        try
        {
            last = start().GetAwaiter().GetResult();
        }
        catch (ChangeFailedException exception)
        {
            last = exception.Outcome;
        }
        IEnumerable<string> before = last.Before?.Values ?? new string[0];
        Say("outcome " + last.Verdict.ToString().ToLowerInvariant() + " " + string.Join(" ", before) + " " + last.Code);
    }

    // Milliseconds, and addresses to ask one by one.
    static void Search(string[] words)
    {
        try
        {
            TimeSpan wait = TimeSpan.FromMilliseconds(int.Parse(words[0]));
            SearchResult result = inventory.DiscoverAsync(wait, also: words.Skip(1)).GetAwaiter().GetResult();
            Say("found complete" + Listed(result.Devices));
        }
        catch (IncompleteSearchException exception)
        {
            Say("found incomplete" + Listed(exception.Result.Devices));
        }
    }

    static string Listed(IEnumerable<KnownDevice> devices)
    {
        return string.Concat(devices.Select(
            device => " " + device.Device.HostName + ":" + device.State.ToString().ToLowerInvariant()));
    }

    static void CloseInBackground()
    {
        new Thread(() => Say("closed " + Outcome(() => session.Dispose()))) { IsBackground = true }.Start();
    }

    static void Configure(string[] words)
    {
        session.ChangeClientsIPConfigurations(new[]
        {
            new Nic
            {
                FriendlyName = words[0],
                MacAddress = words[1],
                IPAddress = words[2],
                SubNetMask = words[3],
                DefaultGateway = words[4],
                Mtu = words[5],
            }
        });
    }

    static void Handle(string kind, DeviceEventArgs args)
    {
        Say(kind + " " + Document(args));
        Act(kind);
    }

    static void Act(string kind)
    {
        string action;
        lock (Actions)
        {
            Actions.TryGetValue(kind, out action);
        }
        switch (action)
        {
            case null:
                return;
            case "throw":
                throw new ApplicationException("thrown by the handler");
            case "hold":
                Say("holding");
                Released.WaitOne();
                Say("handler " + Outcome(session.Discover));
                action = "stop";
                break;
        }
        Say("handler " + Outcome(() => Commands[action](null)));
    }

    // The records as they came, so that the test sees every member.
    static string Document(DeviceEventArgs args)
    {
        var settings = new DataContractJsonSerializerSettings { UseSimpleDictionaryFormat = true };
        using (var stream = new MemoryStream())
        {
            new DataContractJsonSerializer(typeof(DeviceEventArgs), settings).WriteObject(stream, args);
            return Encoding.UTF8.GetString(stream.ToArray());
        }
    }

    static string Outcome(Action action)
    {
        try
        {
            action();
            return "ok";
        }
        catch (DiscoveryException exception)
        {
            return "error " + (uint)exception.Code + " " + exception.Message;
        }
        catch (Exception exception)
        {
            return "failure " + exception.Message.Replace('\n', ' ');
        }
    }

    static void Say(string line)
    {
        byte[] bytes = Encoding.UTF8.GetBytes(line + "\n");
        lock (Output)
        {
            StandardOutput.Write(bytes, 0, bytes.Length);
            StandardOutput.Flush();
        }
    }
}
