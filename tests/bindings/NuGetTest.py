"""The NuGet package: installs, and gives a project all that it needs to show devices."""

import os
import pathlib
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "endtoend"))

from endtoend import Simulator, TestCase, library_path, main, setting  # noqa: E402

PROJECT = """<?xml version="1.0" encoding="utf-8"?>
<Project DefaultTargets="Build" xmlns="http://schemas.microsoft.com/developer/msbuild/2003">
  <PropertyGroup>
    <OutputType>Exe</OutputType>
    <AssemblyName>Sample</AssemblyName>
    <TargetFrameworkVersion>v4.5</TargetFrameworkVersion>
    <OutputPath>out/</OutputPath>
    <NoStdLib>false</NoStdLib>
    <NoCompilerStandardLib>false</NoCompilerStandardLib>
  </PropertyGroup>
  <ItemGroup>
    <Reference Include="DiscoveryServer.Net">
      <HintPath>PACKAGE/lib/net46/DiscoveryServer.Net.dll</HintPath>
    </Reference>
    <Compile Include="Sample.cs" />
  </ItemGroup>
  <Import Project="$(MSBuildToolsPath)/Microsoft.CSharp.targets" />
  <Import Project="PACKAGE/build/DiscoveryServer.ExtC.targets" />
</Project>
"""

DLLS = ("DiscoveryServer.ExtC.dll", "DiscoveryInventory.dll")
NATIVE = {"win-x86": DLLS, "win-x64": DLLS, "linux-x64": ("libDiscoveryServer.ExtC.so", "libDiscoveryInventory.so")}


class NuGetTest(TestCase):
    def setUp(self):
        super().setUp()
        self.csharp = setting("source") / "bindings" / "csharp"
        self.environment = {**os.environ, "HOME": str(self.folder)}  # where nuget puts its settings and its cache
        self.environment.pop("DISCOVERY_LIBRARY", None)

    def run_program(self, *arguments):
        result = subprocess.run(arguments, cwd=self.folder, env=self.environment, capture_output=True, text=True)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        return result.stdout

    def stand_in(self, rid, compiler):
        """DLLs for the word size: whether the targets of the real ones are built does not matter here."""
        source = self.folder / "standin.c"
        source.write_text("int StandIn(void) { return 0; }\n")
        (self.folder / rid).mkdir()
        for name in DLLS:
            self.run_program(compiler, "-shared", str(source), "-o", f"{rid}/{name}")
        return f"{rid}={rid}/{DLLS[0]}"

    def assert_native(self, folder):
        for rid, files in NATIVE.items():
            for file in files:
                self.assertTrue((folder / "runtimes" / rid / "native" / file).exists(), f"{rid}: {file}")

    def test_a_project_finds_assembly_and_library_in_the_package(self):
        self.run_program(
            str(self.csharp / "pack"),
            "feed",
            self.stand_in("win-x86", "i686-w64-mingw32-gcc-posix"),
            self.stand_in("win-x64", "x86_64-w64-mingw32-gcc-posix"),
            f"linux-x64={library_path()}",
        )
        self.run_program("nuget", "install", "DiscoveryServer.ExtC", "-Source", str(self.folder / "feed"),
                         "-OutputDirectory", "packages", "-NonInteractive")  # fmt: skip
        (package,) = (self.folder / "packages").iterdir()
        self.assert_native(package)
        for framework in ("net46", "netstandard2.0"):
            for file in ("DiscoveryServer.Net.dll", "DiscoveryServer.Net.xml"):
                self.assertTrue((package / "lib" / framework / file).exists(), f"{framework}: {file}")
        self.assertNotRegex((package / "README.md").read_text(), r"\]\((?![#h])", "links to what is not there")
        self.assertIn("cJSON", (package / "copyright-linux-x64.txt").read_text())
        version = package.name.removeprefix("DiscoveryServer.ExtC.")
        assembly = (package / "lib/net46/DiscoveryServer.Net.dll").read_bytes().decode("utf-16-le", errors="ignore")
        self.assertRegex(assembly, rf"ProductVersion\0+{version}\0")

        (self.folder / "Sample.csproj").write_text(PROJECT.replace("PACKAGE", f"packages/{package.name}"))
        (self.folder / "Sample.cs").symlink_to(self.csharp / "Sample.cs")
        self.run_program("xbuild", "/nologo", "/verbosity:quiet", "Sample.csproj")
        self.assert_native(self.folder / "out")
        with Simulator("--count", "1") as simulator:
            shown = self.run_program("mono", "out/Sample.exe")
        self.assertIn(simulator.devices[0].name, shown)

    def test_a_missing_library_is_named(self):
        result = subprocess.run(
            [
                self.csharp / "pack",
                "feed",
                "win-x86=missing.dll",
                f"win-x64={library_path()}",
                f"linux-x64={library_path()}",
            ],
            cwd=self.folder,
            capture_output=True,
            text=True,
        )
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertIn("missing.dll is missing: build it", result.stderr)
        self.assertFalse((self.folder / "feed").exists())


if __name__ == "__main__":
    main()
