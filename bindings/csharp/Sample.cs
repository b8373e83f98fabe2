using System;
using System.Threading;
using Zent.Discovery;

static class Sample
{
    static int Main()
    {
        try
        {
            using (var session = new DiscoverySession("discovery.log"))
            {
                session.SignatureReceived += (sender, args) => Console.WriteLine(
                    "signature: {0}, a {1} at {2}", args.Device.HostName, args.Device.DeviceType,
                    args.SourceNic?.IPAddress);
                session.Start();
                session.InitBroadcastProvider("127.0.0.1"); // stays on this machine; leave it out to ask the network
                session.Discover();
                Thread.Sleep(2000);
            }
            return 0;
        }
        catch (Exception exception) when (exception is DiscoveryException || exception is DllNotFoundException)
        {
            Console.Error.WriteLine("sample: " + exception.Message);
            return 1;
        }
    }
}
