using System;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;

namespace Zent.Discovery
{
    /// <summary>
    /// The sixteen functions of a loaded library. They are found at run time, so that a host chooses the file, and hears
    /// of a missing function at once instead of at the first call.
    /// </summary>
    internal sealed class DiscoveryLibrary
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
        private readonly string name;

        /// <param name="path">The file; null for the environment variable's, or where such files lie.</param>
        public DiscoveryLibrary(string path)
        {
            if (string.IsNullOrEmpty(path))
            {
                path = Environment.GetEnvironmentVariable(DiscoverySession.LibraryVariable);
            }
            name = string.IsNullOrEmpty(path) ? DefaultName() : Path.GetFullPath(path);
            Handle = SystemLoader.Load(name, out string reason);
            if (Handle == IntPtr.Zero)
            {
                throw new DllNotFoundException(
                    "cannot load the library " + name + ": " + reason + "; give its path to the session or in the " +
                    "environment variable " + DiscoverySession.LibraryVariable);
            }
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

        /// <summary>The same for every load of one file, which has one state.</summary>
        public IntPtr Handle { get; }

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

        /// <summary>Copies a text that ends with NUL; bytes that are not UTF-8 become U+FFFD.</summary>
        public static string Text(IntPtr text)
        {
            int length = 0;
            while (Marshal.ReadByte(text, length) != 0)
            {
                ++length;
            }
            var bytes = new byte[length];
            Marshal.Copy(text, bytes, 0, length);
            return Encoding.UTF8.GetString(bytes);
        }

        /// <summary>A text for the library.</summary>
        public static byte[] Bytes(string text, string parameter)
        {
            if (text == null)
            {
                throw new ArgumentNullException(parameter);
            }
            if (text.IndexOf('\0') >= 0)
            {
                throw new ArgumentException("a text must not contain NUL", parameter);
            }
            return Encoding.UTF8.GetBytes(text + "\0");
        }

        /// <summary>Where NuGet puts the library for a program, else its name for the system.</summary>
        private static string DefaultName()
        {
            string folder = AppDomain.CurrentDomain.BaseDirectory;
            string file = SystemLoader.IsWindows ? "DiscoveryServer.ExtC.dll" : "libDiscoveryServer.ExtC.so";
            string platform = (SystemLoader.IsWindows ? "win-" : "linux-") + (IntPtr.Size == 4 ? "x86" : "x64");
            foreach (string path in new[] { Path.Combine(folder, file),
                                            Path.Combine(folder, "runtimes", platform, "native", file) })
            {
                if (File.Exists(path))
                {
                    return path;
                }
            }
            return SystemLoader.IsWindows ? file : file + ".1"; // its binary interface
        }

        private void Bind<T>(out T function, string functionName, int argumentBytes)
        {
            IntPtr address = SystemLoader.Find(Handle, functionName, argumentBytes);
            if (address == IntPtr.Zero)
            {
                throw new EntryPointNotFoundException(
                    name + " lacks the function " + functionName + ": it is not DiscoveryServer.ExtC");
            }
            function = Marshal.GetDelegateForFunctionPointer<T>(address);
        }
    }
}
