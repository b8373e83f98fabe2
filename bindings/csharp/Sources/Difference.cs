using System.Runtime.Serialization;

namespace Zent.Discovery
{
    /// <summary>A property that a device tells otherwise than before.</summary>
    [DataContract]
    public sealed class Difference
    {
        /// <summary>Its name, such as HostName.</summary>
        [DataMember]
        public string Property { get; private set; }

        /// <summary>Null when it was not there.</summary>
        [DataMember]
        public string Before { get; private set; }

        /// <summary>Null when it is not there any more.</summary>
        [DataMember]
        public string After { get; private set; }
    }
}
