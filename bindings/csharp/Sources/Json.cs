using System.IO;
using System.Runtime.Serialization.Json;
using System.Text;

namespace Zent.Discovery
{
    /// <summary>Documents of the library's interface, by the reader and writer that every runtime has.</summary>
    internal static class Json
    {
        private static readonly DataContractJsonSerializerSettings Settings =
            new DataContractJsonSerializerSettings { UseSimpleDictionaryFormat = true };

        /// <summary>Bytes that are not UTF-8 become U+FFFD.</summary>
        public static T Read<T>(byte[] document)
        {
            byte[] valid = Encoding.UTF8.GetBytes(Encoding.UTF8.GetString(document));
            using (var stream = new MemoryStream(valid))
            {
                return (T)new DataContractJsonSerializer(typeof(T), Settings).ReadObject(stream);
            }
        }

        public static string Write<T>(T value)
        {
            using (var stream = new MemoryStream())
            {
                new DataContractJsonSerializer(typeof(T), Settings).WriteObject(stream, value);
                return Encoding.UTF8.GetString(stream.ToArray());
            }
        }
    }
}
