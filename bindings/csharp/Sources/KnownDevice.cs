using System;

namespace Zent.Discovery
{
    /// <summary>A device of an inventory.</summary>
    public sealed class KnownDevice
    {
        internal KnownDevice(InventoryDocuments.Row row, DateTimeOffset start)
        {
            Device = row.Device.Device;
            SourceNic = row.Device.SourceNic;
            State = (DeviceState)Enum.Parse(typeof(DeviceState), row.State, true);
            IsHere = row.IsHere;
            FirstSeen = start.AddMilliseconds(row.FirstSeen);
            LastSeen = start.AddMilliseconds(row.LastSeen);
        }

        /// <summary>What it has said of itself.</summary>
        public Device Device { get; }

        /// <summary>The interface that it was heard from; null when it did not name it.</summary>
        public Nic SourceNic { get; }

        /// <summary>What has become of it.</summary>
        public DeviceState State { get; }

        /// <summary>Whether it is neither gone nor has left.</summary>
        public bool IsHere { get; }

        /// <summary>When the first message came.</summary>
        public DateTimeOffset FirstSeen { get; }

        /// <summary>When the last message came.</summary>
        public DateTimeOffset LastSeen { get; }
    }
}
