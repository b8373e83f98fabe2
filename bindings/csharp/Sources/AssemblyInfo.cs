using System.Reflection;
using System.Resources;
using System.Runtime.InteropServices;

[assembly: AssemblyTitle("DiscoveryServer.Net")]
[assembly: AssemblyDescription("Finds devices on the local networks: the library DiscoveryServer.ExtC for C#")]
[assembly: AssemblyCompany("Zent")]
[assembly: AssemblyProduct("DiscoveryServer.ExtC")]
// Programs are bound to this version: it stays as long as they need not be built again.
[assembly: AssemblyVersion("1.0.0.0")]
[assembly: AssemblyFileVersion("1.0.0.0")]
[assembly: AssemblyInformationalVersion("1.0.0")]
[assembly: NeutralResourcesLanguage("en")]
[assembly: ComVisible(false)]
