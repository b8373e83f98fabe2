using System.Runtime.Serialization;

namespace Zent.Discovery
{
    /// <summary>A product that is installed on a device.</summary>
    [DataContract]
    public sealed class Product
    {
        /// <summary>What kind of product it is.</summary>
        [DataMember(Order = 0)]
        public string ProductType { get; private set; }

        /// <summary>Its serial number.</summary>
        [DataMember(Order = 1)]
        public string ProductSerialNumber { get; private set; }

        /// <summary>Its version.</summary>
        [DataMember(Order = 2)]
        public string ProductVersion { get; private set; }

        /// <summary>Its name.</summary>
        [DataMember(Order = 3)]
        public string ProductName { get; private set; }
    }
}
