using System.Runtime.Serialization;

namespace Zent.Discovery
{
    /// <summary>A network interface of a device, or new settings for the one with the MAC address.</summary>
    [DataContract]
    public sealed class Nic
    {
        /// <summary>The name that the device shows for it.</summary>
        [DataMember(Order = 0)]
        public string FriendlyName { get; set; }

        /// <summary>Six hexadecimal numbers joined by colons.</summary>
        [DataMember(Name = "MACAddress", Order = 1)]
        public string MacAddress { get; set; }

        /// <summary>Four decimal numbers joined by periods.</summary>
        [DataMember(Name = "IPAddress", Order = 2)]
        public string IPAddress { get; set; }

        /// <summary>Four decimal numbers joined by periods.</summary>
        [DataMember(Order = 3)]
        public string SubNetMask { get; set; }

        /// <summary>An address, or empty for none.</summary>
        [DataMember(Order = 4)]
        public string DefaultGateway { get; set; }

        /// <summary>A number, or "Unknown"; may be null in new settings.</summary>
        [DataMember(Name = "MTU", Order = 5, EmitDefaultValue = false)]
        public string Mtu { get; set; }
    }
}
