namespace Zent.Discovery
{
    /// <summary>What has become of a device.</summary>
    public enum DeviceState
    {
        /// <summary>It was heard a moment ago.</summary>
        Present,

        /// <summary>It has been silent for a while, and is going to be asked.</summary>
        Stale,

        /// <summary>It is being asked.</summary>
        Asked,

        /// <summary>It has answered none of several questions.</summary>
        Gone,

        /// <summary>It has said Bye.</summary>
        Left,

        /// <summary>It comes and goes.</summary>
        Flapping
    }
}
