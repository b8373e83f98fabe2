using System.Collections.Generic;

namespace Zent.Discovery
{
    /// <summary>What a device tells now, and what of it differs from before.</summary>
    public sealed class DeviceChangedEventArgs : DeviceEventArgs
    {
        internal DeviceChangedEventArgs(DeviceEventArgs message, IList<Difference> differences)
            : base(message.Device, message.SourceNic)
        {
            Differences = differences;
        }

        /// <summary>The properties that differ.</summary>
        public IList<Difference> Differences { get; }
    }
}
