using System;
using System.Collections.Generic;
using System.Runtime.Serialization;

namespace Zent.Discovery
{
    /// <summary>A change of a device that has ended.</summary>
    [DataContract]
    public sealed class ChangeOutcome
    {
        /// <summary>What has come of it.</summary>
        public Verdict Verdict => ParseVerdict(verdict).Value;

        /// <summary>The address of the interface that was meant; null when it is not known.</summary>
        [DataMember(Name = "MACAddress")]
        public string MacAddress { get; private set; }

        /// <summary>From the request to the verdict.</summary>
        [DataMember]
        public double Seconds { get; private set; }

        /// <summary>
        /// What the device had: HostName, or FriendlyName, IPAddress, SubNetMask, DefaultGateway and MTU of the interface;
        /// null when it is not known.
        /// </summary>
        [DataMember]
        public IDictionary<string, string> Before { get; private set; }

        /// <summary>What it has said last since it was told to change; null when it has not.</summary>
        [DataMember]
        public IDictionary<string, string> After { get; private set; }

        /// <summary>Why it was not sent, such as name-taken; null when it was.</summary>
        [DataMember]
        public string Code { get; private set; }

        /// <summary>The same for people.</summary>
        [DataMember]
        public string Text { get; private set; }

        // The request that gives back what the device had; null when that is not known.
        internal IDictionary<string, string> UndoRequest { get; set; }

        // The Id of its entry in the journal; null when it has none.
        internal string Entry { get; set; }

        // Null when the text is none.
        internal static Verdict? ParseVerdict(string text)
        {
            return Enum.TryParse(text?.Replace("-", ""), true, out Verdict verdict) ? verdict : (Verdict?)null;
        }

        [DataMember(Name = "Verdict")]
        private string verdict = null;
    }
}
