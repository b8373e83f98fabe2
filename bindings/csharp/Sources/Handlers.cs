using System;
using System.Diagnostics;

namespace Zent.Discovery
{
    /// <summary>Handlers of a host's, none of which can harm the others or the thread that calls them.</summary>
    internal static class Handlers
    {
        public static void Raise<T>(EventHandler<T> handlers, object sender, T args,
                                    EventHandler<HandlerFailedEventArgs> handlerFailed)
        {
            if (handlers == null)
            {
                return;
            }
            foreach (EventHandler<T> handler in handlers.GetInvocationList())
            {
                try
                {
                    handler(sender, args);
                }
                catch (Exception exception)
                {
                    Report(exception, sender, handlerFailed);
                }
            }
        }

        public static void Report(Exception exception, object sender,
                                  EventHandler<HandlerFailedEventArgs> handlerFailed)
        {
            try
            {
                if (handlerFailed == null)
                {
                    Trace.TraceError("a handler has failed: {0}", exception);
                }
                else
                {
                    handlerFailed(sender, new HandlerFailedEventArgs(exception));
                }
            }
            catch (Exception)
            {
                // Whoever is to be told cannot be told.
            }
        }
    }
}
