using System;
using System.Threading.Tasks;
using Zent.Discovery;

static class InventorySample
{
    static int Main()
    {
        try
        {
            RenameOne().GetAwaiter().GetResult();
            return 0;
        }
        catch (Exception exception) when (exception is ChangeFailedException || exception is IncompleteSearchException)
        {
            Console.Error.WriteLine("inventory: " + exception.Message);
            return 1;
        }
    }

    static async Task RenameOne()
    {
        using (var session = new DiscoverySession("discovery.log"))
        using (var inventory = new Inventory(session))
        {
            session.Start();
            session.InitBroadcastProvider("127.0.0.1"); // stays on this machine; leave it out to ask the network
            SearchResult found = await inventory.DiscoverAsync();
            Console.WriteLine("{0} devices, all that there are", found.Devices.Count);

            string macAddress = found.Devices[0].Device.Nics[0].MacAddress;
            ChangeOutcome change = await inventory.RenameAsync("press-4", macAddress);
            Console.WriteLine("{0} became {1}", change.Before["HostName"], change.After["HostName"]);
            await inventory.UndoAsync(change);
        }
    }
}
