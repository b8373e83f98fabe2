using System;
using System.Runtime.Serialization;

namespace Zent.Discovery
{
    /// <summary>Devices that cannot all be as they say.</summary>
    [DataContract]
    public sealed class ConflictEventArgs : EventArgs
    {
        /// <summary>What they have in common: mac, ip or name.</summary>
        [DataMember]
        public string Kind { get; private set; }

        /// <summary>The address or name.</summary>
        [DataMember]
        public string Value { get; private set; }

        /// <summary>How many devices have it.</summary>
        [DataMember]
        public int Count { get; private set; }

        /// <summary>The message of one of them.</summary>
        [DataMember]
        public DeviceEventArgs First { get; private set; }

        /// <summary>The message of another one.</summary>
        [DataMember]
        public DeviceEventArgs Second { get; private set; }
    }
}
