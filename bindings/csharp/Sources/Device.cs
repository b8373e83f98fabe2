using System.Collections.Generic;
using System.Runtime.Serialization;

namespace Zent.Discovery
{
    /// <summary>
    /// A device as it describes itself. Bytes that are not UTF-8 are U+FFFD; texts may hold control characters.
    /// </summary>
    [DataContract]
    public sealed class Device
    {
        /// <summary>Its name in the network.</summary>
        [DataMember(Order = 0)]
        public string HostName { get; private set; }

        /// <summary>Whether it refuses new host names.</summary>
        [DataMember(Order = 1)]
        public bool IsHostNameReadOnly { get; private set; }

        /// <summary>Whether new settings of its interfaces take effect with a restart only.</summary>
        [DataMember(Order = 2)]
        public bool RebootRequiredForIPConfigChange { get; private set; }

        /// <summary>Whether a new host name takes effect with a restart only.</summary>
        [DataMember(Order = 3)]
        public bool RebootRequiredForHostNameChange { get; private set; }

        /// <summary>What kind of device it is.</summary>
        [DataMember(Order = 4)]
        public string DeviceType { get; private set; }

        /// <summary>The family of devices that it belongs to.</summary>
        [DataMember(Order = 5)]
        public string DeviceFamily { get; private set; }

        /// <summary>Its serial number.</summary>
        [DataMember(Order = 6)]
        public string SerialNumber { get; private set; }

        /// <summary>Its network interfaces.</summary>
        [DataMember(Name = "NICs", Order = 7)]
        public IList<Nic> Nics { get; private set; }

        /// <summary>What is installed on it.</summary>
        [DataMember(Order = 8)]
        public IList<Product> Products { get; private set; }

        /// <summary>How files get to it.</summary>
        [DataMember(Order = 9)]
        public IDictionary<string, string> FileTransferInfos { get; private set; }
    }
}
