using System.Collections.Generic;
using System.Runtime.Serialization;

namespace Zent.Discovery
{
    /// <summary>How an inventory goes about its devices. Null stands for what is usual.</summary>
    [DataContract]
    public sealed class InventoryOptions
    {
        /// <summary>
        /// Whose addresses a search may ask one by one when answers were lost, such as 192.168.1.10/24. Usually those of
        /// this machine, but for loopback and what bears a name that container engines, hypervisors and tunnels give.
        /// </summary>
        public IList<string> Networks { get; set; }

        /// <summary>How many devices are known at most; the one longest unseen gives way. Usually 10000.</summary>
        [DataMember(EmitDefaultValue = false)]
        public int? MaximumDevices { get; set; }

        /// <summary>Milliseconds from one question to all devices to the next; 0 asks nobody. Usually 10000.</summary>
        [DataMember(EmitDefaultValue = false)]
        public int? AskEvery { get; set; }

        /// <summary>Milliseconds of silence after which a device is asked by itself. Usually 15000.</summary>
        [DataMember(EmitDefaultValue = false)]
        public int? StaleAfter { get; set; }

        /// <summary>Milliseconds from such a question to the next one. Usually 1000.</summary>
        [DataMember(EmitDefaultValue = false)]
        public int? AnswerTime { get; set; }

        /// <summary>So many of these questions unanswered and a device is gone. Usually 8.</summary>
        [DataMember(EmitDefaultValue = false)]
        public int? Misses { get; set; }

        /// <summary>Conflicts that are not told, such as ip:10.0.0.5, name:press-4 or mac:00:1A:2B:3C:4D:5E.</summary>
        [DataMember(EmitDefaultValue = false)]
        public IList<string> AcceptedConflicts { get; set; }

        /// <summary>
        /// A file that keeps each change before it is sent, and what has come of it, so that it can be taken back later.
        /// Other programs, such as discovery-console, may keep the same one at the same time. Usually none, as
        /// with an empty text.
        /// </summary>
        [DataMember(EmitDefaultValue = false)]
        public string Journal { get; set; }

        // Routes, lost answers, networks and who holds the port are the library's business.
        [DataMember]
        private bool AskSystem { get; set; } = true;
    }
}
