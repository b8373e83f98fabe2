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

        public static T Read<T>(string document)
        {
            using (var stream = new MemoryStream(Encoding.UTF8.GetBytes(document)))
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
