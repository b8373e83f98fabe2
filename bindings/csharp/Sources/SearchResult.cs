using System.Collections.Generic;
using System.Runtime.Serialization;

namespace Zent.Discovery
{
    /// <summary>What a search has found, and how it went.</summary>
    [DataContract]
    public sealed class SearchResult
    {
        /// <summary>The devices that are here.</summary>
        public IList<KnownDevice> Devices { get; internal set; }

        [DataMember(Name = "Complete")]
        internal bool IsComplete { get; private set; }

        /// <summary>Its rounds of questions.</summary>
        [DataMember]
        public IList<SearchRound> Rounds { get; private set; }

        /// <summary>How many answers this machine has lost; null when the system does not tell.</summary>
        [DataMember]
        public long? LostHere { get; private set; }

        /// <summary>How many devices nobody has seen, by an estimate; null when there is none.</summary>
        [DataMember]
        public double? EstimatedUnseen { get; private set; }

        /// <summary>How long it took.</summary>
        [DataMember]
        public double Seconds { get; private set; }
    }
}
