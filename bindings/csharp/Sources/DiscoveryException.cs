using System;

namespace Zent.Discovery
{
    /// <summary>The library has refused a call, and nothing has changed unless the call says otherwise.</summary>
    public sealed class DiscoveryException : Exception
    {
        internal DiscoveryException(string function, int code, string text)
            : base(string.Format(code < 0 ? "{0} failed: {1} (code 0x{2:X8})" : "{0} failed: {1} (code {2})",
                                 function, text, code))
        {
            Function = function;
            Code = unchecked((DiscoveryErrorCode)code);
        }

        /// <summary>The name of the library's function.</summary>
        public string Function { get; }

        /// <summary>The library's code.</summary>
        public DiscoveryErrorCode Code { get; }
    }
}
