namespace Zent.Discovery
{
    /// <summary>How much goes into the library's log.</summary>
    public enum LogLevel
    {
        /// <summary>Life cycle, rejected messages, failures.</summary>
        Critical = 1,

        /// <summary>And requests and handled messages.</summary>
        Standard = 2,

        /// <summary>And the text of every message.</summary>
        Debug = 3,

        /// <summary>No lines about events at all.</summary>
        None = 255
    }
}
