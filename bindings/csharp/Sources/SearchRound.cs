using System.Runtime.Serialization;

namespace Zent.Discovery
{
    /// <summary>A round of a search.</summary>
    [DataContract]
    public sealed class SearchRound
    {
        /// <summary>Who was asked: all, sweep (the addresses of the networks) or list (those that were named).</summary>
        [DataMember]
        public string Asked { get; private set; }

        /// <summary>How many answers were heard.</summary>
        [DataMember]
        public int Answers { get; private set; }

        /// <summary>How many of them came from devices that were not known before.</summary>
        [DataMember]
        public int New { get; private set; }

        /// <summary>How many answers this machine has lost; null when the system does not tell.</summary>
        [DataMember]
        public long? Lost { get; private set; }
    }
}
