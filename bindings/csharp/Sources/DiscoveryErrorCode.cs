namespace Zent.Discovery
{
    /// <summary>Codes that a host meets; the library may return others, too.</summary>
    public enum DiscoveryErrorCode : uint
    {
        /// <summary>A text is null.</summary>
        ArgumentNull = 9,

        /// <summary>A value is none of those that are allowed.</summary>
        ArgumentOutOfRange = 10,

        /// <summary>No memory is left.</summary>
        OutOfMemory = 27,

        /// <summary>The session is closed, another one is open, or the call is not allowed in a handler.</summary>
        InvalidOperation = 30,

        /// <summary>A request while the server is not started, or while it restarts itself.</summary>
        NullPointer = 41,

        /// <summary>The log cannot be opened: access denied, a folder in its place, a path too long.</summary>
        IO = 58,

        /// <summary>The log's path leads nowhere, such as to a missing drive.</summary>
        DirectoryNotFound = 59,

        /// <summary>The log's path is empty, or leads nowhere.</summary>
        FileNotFound = 64,

        /// <summary>The network refused, for instance because UDP port 12001 is taken.</summary>
        Socket = 73,

        /// <summary>Settings lack a required member.</summary>
        ResourceNotFound = 0xC0090109,

        /// <summary>A text is not the MAC address, IP address or version that it should be.</summary>
        InvalidFormat = 0xC0090114
    }
}
