using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Net;
using System.Net.Sockets;
using System.Runtime.InteropServices;
using System.Text;

namespace Zent.Discovery
{
    /// <summary>What this machine knows of its network.</summary>
    internal static class LocalNetwork
    {
        private const int DevicePort = 12000;
        private const string ServerPort = ":2EE1"; // 12001, as the system's table has it

        /// <summary>Asks the system whether there is a route to an IPv4 address; nothing is sent.</summary>
        public static bool HasRoute(string address)
        {
            try
            {
                using (var probe = new Socket(AddressFamily.InterNetwork, SocketType.Dgram, ProtocolType.Udp))
                {
                    probe.Connect(IPAddress.Parse(address), DevicePort);
                    return true;
                }
            }
            catch (SocketException)
            {
                return false;
            }
        }

        /// <summary>
        /// How many datagrams the system has dropped for this process's socket of the server; -1 when it does not tell.
        /// </summary>
        public static long CountLost()
        {
            try
            {
                var inodes = new HashSet<string>(
                    Directory.EnumerateFileSystemEntries("/proc/self/fd").Select(SocketInode));
                long[] drops = File.ReadLines("/proc/net/udp")
                    .Select(line => line.Split(new[] { ' ' }, StringSplitOptions.RemoveEmptyEntries))
                    .Where(row => row[1].EndsWith(ServerPort, StringComparison.Ordinal) && inodes.Contains(row[9]))
                    .Select(row => long.Parse(row.Last()))
                    .ToArray();
                return drops.Length > 0 ? drops.Sum() : -1;
            }
            catch (Exception exception) when (exception is IOException || exception is UnauthorizedAccessException)
            {
                return -1;
            }
        }

        // Null for what is no socket.
        private static string SocketInode(string path)
        {
            const string prefix = "socket:[";
            var target = new byte[64];
            int length = (int)ReadLink(Encoding.UTF8.GetBytes(path + "\0"), target, new IntPtr(target.Length));
            string text = Encoding.UTF8.GetString(target, 0, Math.Max(length, 0));
            bool isSocket = text.StartsWith(prefix, StringComparison.Ordinal);
            return isSocket ? text.Substring(prefix.Length).TrimEnd(']') : null;
        }

        [DllImport("libc", EntryPoint = "readlink")]
        private static extern IntPtr ReadLink(byte[] path, byte[] target, IntPtr size);
    }
}
