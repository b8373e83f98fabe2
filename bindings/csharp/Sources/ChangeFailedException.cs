using System;

namespace Zent.Discovery
{
    /// <summary>A change has ended with another verdict than that it is applied.</summary>
    public sealed class ChangeFailedException : Exception
    {
        internal ChangeFailedException(ChangeOutcome outcome)
            : base((outcome.MacAddress ?? "the device") + " is not changed: " + outcome.Verdict +
                   (outcome.Code == null ? "" : ": " + outcome.Text + " (" + outcome.Code + ")"))
        {
            Outcome = outcome;
        }

        /// <summary>What is the matter.</summary>
        public ChangeOutcome Outcome { get; }
    }
}
