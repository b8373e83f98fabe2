using System;

namespace Zent.Discovery
{
    /// <summary>An exception that a handler of events has thrown.</summary>
    public sealed class HandlerFailedEventArgs : EventArgs
    {
        internal HandlerFailedEventArgs(Exception exception)
        {
            Exception = exception;
        }

        /// <summary>The exception.</summary>
        public Exception Exception { get; }
    }
}
