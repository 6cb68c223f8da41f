#!/usr/bin/env python3
"""Makes the NuGet package of KirvoImage, with the built libraries of all targets: nupkg.py FOLDER

Programs for .NET Framework get the assembly KirvoImaging.dll, which knows System.Drawing; later .NET
compiles the sources, which then give spans, and knows bitmaps where KIRVO_DRAWING is defined.
"""
import pathlib
import subprocess
import sys
import tempfile
import uuid

sys.dont_write_bytecode = True
sys.path[:0] = [str(pathlib.Path(__file__).parent), str(pathlib.Path(__file__).parents[1] / "tests/support")]
import version
from archive import write_zip
from libraries import ROOT, Libraries

SOURCE = ROOT / "bindings/csharp"
SOURCES = ("Kirvo.cs", "KirvoImage.cs", "KirvoBitmap.cs")
NAME = f"Kirvo.{version.TEXT}"
NUSPEC = f"""<?xml version="1.0" encoding="utf-8"?>
<package xmlns="http://schemas.microsoft.com/packaging/2013/05/nuspec.xsd">
  <metadata>
    <id>Kirvo</id>
    <version>{version.TEXT}</version>
    <authors>the Kirvo authors</authors>
    <description>Pictures opened, changed and saved: image processing on packed DIBs.</description>
    <license type="expression">MIT</license>
    <tags>image jpeg bitmap dib</tags>
    <contentFiles>
      <files include="cs/net5.0/**/*.cs" buildAction="Compile" />
    </contentFiles>
    <frameworkAssemblies>
      <frameworkAssembly assemblyName="System.Drawing" targetFramework=".NETFramework4.5" />
    </frameworkAssemblies>
    <dependencies>
      <group targetFramework=".NETFramework4.5" />
      <group targetFramework="net5.0" />
    </dependencies>
  </metadata>
</package>
"""
# .NET Framework knows no runtimes/: the libraries of the program's width are copied beside it. Those
# for any processor run at the system's, unless they prefer 32 bits.
TARGETS = """<?xml version="1.0" encoding="utf-8"?>
<Project xmlns="http://schemas.microsoft.com/developer/msbuild/2003">
  <PropertyGroup>
    <KirvoTarget>$(PlatformTarget)</KirvoTarget>
    <KirvoTarget Condition="'$(KirvoTarget)' == ''">$(Platform)</KirvoTarget>
    <KirvoRuntime>win-x64</KirvoRuntime>
    <KirvoRuntime Condition="'$(KirvoTarget)' == 'x86'">win-x86</KirvoRuntime>
    <KirvoRuntime Condition="'$(KirvoTarget)' != 'x64' And '$(Prefer32Bit)' == 'true'">win-x86</KirvoRuntime>
  </PropertyGroup>
  <ItemGroup>
    <None Include="$(MSBuildThisFileDirectory)..\\..\\runtimes\\$(KirvoRuntime)\\native\\*.dll">
      <Link>%(Filename)%(Extension)</Link>
      <CopyToOutputDirectory>PreserveNewest</CopyToOutputDirectory>
    </None>
  </ItemGroup>
</Project>
"""
RELATIONS = """<?xml version="1.0" encoding="utf-8"?>
<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">
  <Relationship Type="http://schemas.microsoft.com/packaging/2010/07/manifest" Target="/Kirvo.nuspec" Id="R1" />
</Relationships>
"""
KINDS = """<?xml version="1.0" encoding="utf-8"?>
<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">
  <Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml" />
{}
</Types>
"""


def assembly():
    """The assembly and its documentation."""
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        library, documents = folder / "KirvoImaging.dll", folder / "KirvoImaging.xml"
        numbered = folder / "Version.cs"
        numbered.write_text(f'[assembly: System.Reflection.AssemblyVersion("{version.TEXT}")]\n')
        subprocess.run(["mcs", "-target:library", "-optimize+", "-warnaserror", "-r:System.Drawing", f"-out:{library}",
                        f"-doc:{documents}", numbered, *(SOURCE / name for name in SOURCES)], check=True)
        return library.read_bytes(), documents.read_bytes()


def settled(data):
    """The time stamp of the file's header and the identity of the module, which differ each time."""
    data = bytearray(data)
    header = int.from_bytes(data[0x3C:0x40], "little")
    data[header + 8:header + 12] = bytes(4)
    at = data.index(b"#GUID\0\0\0") # a stream's header: offset, size, name
    root = data.index(b"BSJB")
    start = root + int.from_bytes(data[at - 8:at - 4], "little")
    data[start:start + 16] = uuid.uuid5(uuid.NAMESPACE_URL, f"kirvo:{version.TEXT}").bytes_le
    return bytes(data)


def main(folder):
    library, documents = assembly()
    members = {
        "Kirvo.nuspec": NUSPEC.encode(),
        "lib/net45/KirvoImaging.dll": settled(library),
        "lib/net45/KirvoImaging.xml": documents,
        "lib/net45/KirvoImaging.dll.config": (SOURCE / "Kirvo.dll.config").read_bytes(),
        "lib/net5.0/_._": b"",
        "build/net45/Kirvo.targets": TARGETS.encode(),
        "LICENSE": (ROOT / "LICENSE").read_bytes(),
    }
    members |= {f"contentFiles/cs/net5.0/Kirvo/{name}": (SOURCE / name).read_bytes() for name in SOURCES}
    for preset, runtime in (("win32", "win-x86"), ("win64", "win-x64"), ("native", "linux-x64")):
        libraries = Libraries(preset)
        members |= {f"runtimes/{runtime}/native/{name}": data for name, data in libraries.files.items()}
        members |= {f"licenses/{name}": data for name, data in libraries.licences.items()}
    endings = sorted({pathlib.PurePath(name).suffix.lstrip(".") for name in members} - {""})
    kinds = "\n".join(f'  <Default Extension="{ending}" ContentType="application/octet" />'
                      for ending in endings)
    kinds += '\n  <Override PartName="/LICENSE" ContentType="application/octet" />'
    members = {"[Content_Types].xml": KINDS.format(kinds).encode(), "_rels/.rels": RELATIONS.encode(),
               **members}
    write_zip(pathlib.Path(folder) / f"{NAME}.nupkg", members.items())
    print(f"{NAME}.nupkg")


main(*sys.argv[1:])
