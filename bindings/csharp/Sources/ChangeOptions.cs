using System;
using System.Runtime.Serialization;

namespace Zent.Discovery
{
    /// <summary>How to change a device.</summary>
    [DataContract]
    public sealed class ChangeOptions
    {
        /// <summary>
        /// Whether to search first, for three seconds at most, for devices that have the name or the address.
        /// </summary>
        [DataMember]
        public bool Look { get; set; } = true;

        /// <summary>Until the device is to show the change; null for three seconds.</summary>
        public TimeSpan? Timeout { get; set; }

        /// <summary>
        /// The same for a device that takes it when it starts anew. Null stands for a minute for one that falls silent,
        /// and for Timeout for one that goes on as before.
        /// </summary>
        public TimeSpan? RebootTimeout { get; set; }

        /// <summary>Goes on when the device is unknown or another one has the name or the address.</summary>
        [DataMember]
        public bool Force { get; set; }

        [DataMember]
        internal bool GivesBack { get; set; }

        [DataMember(EmitDefaultValue = false)]
        internal string Undoes { get; set; }

        [DataMember(Name = "Timeout", EmitDefaultValue = false)]
        private long? TimeoutMilliseconds
        {
            get { return (long?)Timeout?.TotalMilliseconds; }
            set { Timeout = null; }
        }

        [DataMember(Name = "RebootTimeout", EmitDefaultValue = false)]
        private long? RebootTimeoutMilliseconds
        {
            get { return (long?)RebootTimeout?.TotalMilliseconds; }
            set { RebootTimeout = null; }
        }
    }
}
