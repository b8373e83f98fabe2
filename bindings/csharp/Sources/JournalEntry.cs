using System.Collections.Generic;
using System.Runtime.Serialization;

namespace Zent.Discovery
{
    /// <summary>A change of a device as the journal of an inventory has it.</summary>
    [DataContract]
    public sealed class JournalEntry
    {
        /// <summary>Tells it apart from the others of the journal.</summary>
        [DataMember]
        public string Id { get; private set; }

        /// <summary>When it was sent, in UTC, such as 2026-03-09T14:07:09.250Z.</summary>
        [DataMember]
        public string Time { get; private set; }

        /// <summary>The address of the interface that was meant; empty when it was not known.</summary>
        [DataMember(Name = "MACAddress")]
        public string MacAddress { get; private set; }

        /// <summary>What the device had, as in <see cref="ChangeOutcome"/>; null when it was not known.</summary>
        [DataMember]
        public IDictionary<string, string> Before { get; private set; }

        /// <summary>What it was to have.</summary>
        [DataMember]
        public IDictionary<string, string> After { get; private set; }

        /// <summary>What has come of it; null when nobody knows.</summary>
        public Verdict? Verdict => ChangeOutcome.ParseVerdict(verdict);

        /// <summary>
        /// Whether nobody knows what has come of it: the program that sent it ended before it could tell.
        /// </summary>
        public bool IsOpen => state == "open";

        /// <summary>Whether it is taken back.</summary>
        public bool IsUndone => state == "undone";

        /// <summary>The Id of the change that this one has taken back; null as a rule.</summary>
        [DataMember]
        public string Undoes { get; private set; }

        [DataMember(Name = "Verdict")]
        private string verdict = null;

        [DataMember(Name = "State")]
        private string state = null;
    }
}
