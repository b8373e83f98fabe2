using System;

namespace Zent.Discovery
{
    /// <summary>A search has ended before it was complete.</summary>
    public sealed class IncompleteSearchException : Exception
    {
        internal IncompleteSearchException(SearchResult result)
            : base(result.Devices.Count + " devices found, but the search has ended before it was complete")
        {
            Result = result;
        }

        /// <summary>What was found, and how it went.</summary>
        public SearchResult Result { get; }
    }
}
