namespace Zent.Discovery
{
    /// <summary>What has come of a change of a device.</summary>
    public enum Verdict
    {
        /// <summary>The device shows it.</summary>
        Applied,

        /// <summary>
        /// It does not show it, or is silent, and has said that it takes such changes when it starts anew.
        /// </summary>
        RebootNeeded,

        /// <summary>It answers, and does not show it.</summary>
        Refused,

        /// <summary>It does not answer.</summary>
        NoAnswer,

        /// <summary>Something was wrong with the request.</summary>
        NotSent
    }
}
