using System;
using System.Runtime.Serialization;

namespace Zent.Discovery
{
    /// <summary>A message of a device.</summary>
    [DataContract]
    public class DeviceEventArgs : EventArgs
    {
        internal DeviceEventArgs(Device device, Nic sourceNic)
        {
            Device = device;
            SourceNic = sourceNic;
        }

        /// <summary>The device.</summary>
        [DataMember(Name = "Host", Order = 0)]
        public Device Device { get; private set; }

        /// <summary>The interface that the message was sent from; null when the device did not name it.</summary>
        [DataMember(Name = "SourceNIC", Order = 1, EmitDefaultValue = false)]
        public Nic SourceNic { get; private set; }
    }
}
