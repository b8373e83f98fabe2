using System;

namespace Zent.Discovery
{
    /// <summary>The sixteen functions of the library that talks with devices.</summary>
    internal sealed class DiscoveryLibrary : NativeLibrary
    {
        public readonly InitializeFunction Initialize;
        public readonly PlainFunction Terminate;
        public readonly PlainFunction StartServer;
        public readonly PlainFunction StopServer;
        public readonly PlainFunction Discover;
        public readonly TextFunction RefreshClient;
        public readonly TextFunction ReachClient;
        public readonly TwoTextsFunction ChangeClientsHostName;
        public readonly TwoTextsFunction ChangeClientsHostNameWithIP;
        public readonly TextFunction ChangeClientsIPConfigurations;
        public readonly TextFunction InitBroadcastProvider;
        public readonly TextFunction SetMinCompatibleVersion;
        public readonly SetCallbackFunction SetClientSignatureReceivedEventCallBack;
        public readonly SetCallbackFunction SetHelloMessageReceivedEventCallBack;
        public readonly SetCallbackFunction SetByeMessageReceivedEventCallBack;

        private readonly GetErrorMessageFunction getErrorMessage;

        /// <param name="path">The file; null for the environment variable's, or where such files lie.</param>
        public DiscoveryLibrary(string path)
            : base("DiscoveryServer.ExtC", path, DiscoverySession.LibraryVariable)
        {
            int word = IntPtr.Size;
            Bind(out Initialize, "Initialize", word + 4);
            Bind(out Terminate, "Terminate", 0);
            Bind(out StartServer, "StartServer", 0);
            Bind(out StopServer, "StopServer", 0);
            Bind(out getErrorMessage, "GetErrorMessage", 4);
            Bind(out Discover, "Discover", 0);
            Bind(out ChangeClientsIPConfigurations, "ChangeClientsIPConfigurations", word);
            Bind(out ChangeClientsHostName, "ChangeClientsHostName", 2 * word);
            Bind(out ChangeClientsHostNameWithIP, "ChangeClientsHostNameWithIP", 2 * word);
            Bind(out RefreshClient, "RefreshClient", word);
            Bind(out ReachClient, "ReachClient", word);
            Bind(out SetClientSignatureReceivedEventCallBack, "SetClientSignatureReceivedEventCallBack", word);
            Bind(out SetHelloMessageReceivedEventCallBack, "SetHelloMessageReceivedEventCallBack", word);
            Bind(out SetByeMessageReceivedEventCallBack, "SetByeMessageReceivedEventCallBack", word);
            Bind(out InitBroadcastProvider, "InitBroadcastProvider", word);
            Bind(out SetMinCompatibleVersion, "SetMinCompatibleVersion", word);
        }

        public DiscoveryException Error(string function, int code)
        {
            IntPtr message = getErrorMessage(code);
            if (message == IntPtr.Zero)
            {
                return new DiscoveryException(function, code, "no memory is left for the text");
            }
            try
            {
                return new DiscoveryException(function, code, Text(message));
            }
            finally
            {
                SystemLoader.Free(message);
            }
        }

        public void Check(string function, int code)
        {
            if (code != 0)
            {
                throw Error(function, code);
            }
        }
    }
}
