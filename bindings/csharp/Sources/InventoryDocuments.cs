using System.Collections.Generic;
using System.Runtime.Serialization;

namespace Zent.Discovery
{
    /// <summary>What goes to the inventory's library and comes from it as JSON, unless a host sees it, too.</summary>
    internal static class InventoryDocuments
    {
        [DataContract]
        internal sealed class SearchOptions
        {
            [DataMember(EmitDefaultValue = false)]
            public long? Wait { get; set; }

            [DataMember]
            public bool Sweep { get; set; }

            [DataMember(EmitDefaultValue = false)]
            public IList<string> Networks { get; set; }

            [DataMember(EmitDefaultValue = false)]
            public IList<string> Also { get; set; }
        }

        [DataContract]
        internal sealed class Event
        {
            [DataMember(Name = "Event")]
            public string Kind { get; private set; }

            [DataMember]
            public DeviceEventArgs Device { get; private set; }

            [DataMember]
            public IList<Difference> Changes { get; private set; }

            [DataMember]
            public ConflictEventArgs Conflict { get; private set; }

            [DataMember]
            public long Id { get; private set; }

            [DataMember]
            public ChangeOutcome Change { get; private set; }

            [DataMember]
            public IDictionary<string, string> Undo { get; private set; }

            [DataMember]
            public string Entry { get; private set; }
        }

        [DataContract]
        internal sealed class KeptChanges
        {
            [DataMember]
            public IList<JournalEntry> Entries { get; private set; }

            [DataMember]
            public NewestChange Newest { get; private set; }

            [DataMember]
            public IList<string> Broken { get; private set; }
        }

        [DataContract]
        internal sealed class NewestChange
        {
            [DataMember]
            public JournalEntry Entry { get; private set; }

            [DataMember]
            public IDictionary<string, string> Request { get; private set; }
        }

        [DataContract]
        internal sealed class Snapshot
        {
            [DataMember]
            public IList<Row> Devices { get; private set; }
        }

        [DataContract]
        internal sealed class Row
        {
            [DataMember]
            public string State { get; private set; }

            [DataMember(Name = "Here")]
            public bool IsHere { get; private set; }

            [DataMember]
            public long FirstSeen { get; private set; }

            [DataMember]
            public long LastSeen { get; private set; }

            [DataMember]
            public DeviceEventArgs Device { get; private set; }
        }
    }
}
