#!/usr/bin/env python3
"""What the viewer shows as code, built and run: code.py LANGUAGE build/<preset>/interface.json PROGRAM

PROGRAM writes the code of every effect. In C, C#, Pascal and Python it is compiled as it is and run,
and the command line is run by the tool; its picture is the one that the effect itself has made. Visual
Basic is held against its declarations.
A check whose compiler is missing is skipped (exit code 77).
"""
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

SOURCE = pathlib.Path(__file__).parents[2]
CONFIG = json.loads(pathlib.Path(sys.argv[2]).read_text())
BUILD = pathlib.Path(CONFIG["library"]).parent
ENVIRONMENT = {**os.environ, "LD_LIBRARY_PATH": str(BUILD), "KIRVO_LIBRARY": CONFIG["library"],
               "KIRVO_FILES_LIBRARY": CONFIG["files_library"],
               "PYTHONPATH": str(SOURCE / "bindings/python/src"), "PYTHONDONTWRITEBYTECODE": "1"}


def run(*command, folder):
    result = subprocess.run(list(map(str, command)), env=ENVIRONMENT, cwd=folder, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    assert result.returncode == 0, f"{command}: {result.returncode}\n{result.stdout[-4000:]}"
    return result.stdout


def need(program, package):
    if not shutil.which(program):
        print(f"needs {program}: Debian's {package}")
        sys.exit(77)


def indented(code, spaces):
    return "".join(f"{' ' * spaces}{line}\n" for line in code.splitlines())


def snippets(folder, extension):
    """Name, code, and the variable of its result."""
    found = []
    for path in sorted(folder.glob("*." + extension)):
        if path.stem.startswith("all"):
            continue  # what was made of them
        code = path.read_text()
        found.append((path.stem, code, re.search(r"the result is (\w+)", code)[1]))
    assert len(found) > 30
    return found


def function(name):
    return "do_" + name.replace("-", "_")


def as_c(folder):
    need("cc", "gcc")
    text = "#include <kirvo_files.h>\n#include <stdio.h>\n#include <string.h>\n"
    cases = ""
    for name, code, result in snippets(folder, "c"):
        text += f"static int32_t {function(name)}(HGLOBAL dib, HGLOBAL* result) {{\n" \
                f"{indented(code, 4)}    (void)status;\n    *result = {result};\n    return 0;\n}}\n"
        cases += f'    if (strcmp(name, "{name}") == 0) return {function(name)}(dib, result);\n'
    text += "static int32_t apply(const char* name, HGLOBAL dib, HGLOBAL* result) {\n" + cases + \
            "    return -1;\n}\n" + r"""
int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        char name[200];
        HGLOBAL dib = NULL, result = NULL;
        snprintf(name, sizeof name, "%s-c.bmp", argv[i]);
        if (KirvoFilesOpen("picture.bmp", NULL, &dib, NULL) != 0 || apply(argv[i], dib, &result) != 0 ||
            KirvoFilesSave(name, result, NULL, NULL, NULL) != 0)
            return printf("%s\n", argv[i]), 1;
        GlobalFree(result);
    }
    return 0;
}
"""
    (folder / "all.c").write_text(text)
    # The sanitizer also tells what the code forgets to free.
    run("cc", "-std=c99", "-Wall", "-Wextra", "-Werror", "-fsanitize=address", "all.c", "-o", "all_c",
        f"-I{SOURCE}/include", f"-L{BUILD}", "-lkirvo", "-lkirvofiles", folder=folder)
    run("./all_c", *(name for name, _, _ in snippets(folder, "c")), folder=folder)


def as_csharp(folder):
    need("mcs", "mono-mcs")
    need("mono", "mono-runtime")
    text = "using System;\nusing KirvoImaging;\nstatic class All {\n"
    cases = ""
    for name, code, result in snippets(folder, "cs"):
        text += f"    static IntPtr {function(name)}(IntPtr dib) {{\n{indented(code, 8)}" \
                f"        return {result};\n    }}\n"
        cases += f'            case "{name}": return {function(name)}(dib);\n'
    text += f"""    static IntPtr Apply(string name, IntPtr dib) {{
        switch (name) {{
{cases}            default: throw new ArgumentException(name);
        }}
    }}
    static void Main(string[] names) {{
        foreach (string name in names) {{
            IntPtr dib;
            if (KirvoFiles.KirvoFilesOpenW("picture.bmp", IntPtr.Zero, out dib, IntPtr.Zero) != 0)
                throw new Exception("picture.bmp");
            IntPtr result = Apply(name, dib);
            if (KirvoFiles.KirvoFilesSaveW(name + "-cs.bmp", result, IntPtr.Zero, IntPtr.Zero, IntPtr.Zero) != 0)
                throw new Exception(name);
            Kirvo.GlobalFree(result);
        }}
    }}
}}
"""
    (folder / "all.cs").write_text(text)
    declarations = SOURCE / "bindings/csharp"
    run("mcs", "-nowarn:0219,0168", "all.cs", declarations / "Kirvo.cs", declarations / "KirvoFiles.cs",
        "-out:all.exe", folder=folder)
    shutil.copy(declarations / "Kirvo.dll.config", folder / "all.exe.config")
    run("mono", "all.exe", *(name for name, _, _ in snippets(folder, "cs")), folder=folder)


def as_pascal(folder):
    need("fpc", "fp-compiler")
    text = "{$MODE OBJFPC}{$H+}\nprogram all_pas;\nuses SysUtils, Kirvo, KirvoFiles;\n"
    cases = ""
    for name, code, result in snippets(folder, "pas"):
        body = re.sub(r"end;\n\Z", f"  Result := {result};\nend;\n", code)
        text += f"function {function(name)}(dib: HGLOBAL): HGLOBAL;\n{body}\n"
        cases += f"  if name = '{name}' then exit({function(name)}(dib));\n"
    text += f"""function Apply(const name: string; dib: HGLOBAL): HGLOBAL;
begin
{cases}  Result := 0;
end;
var
  i: Integer;
  dib: HGLOBAL;
begin
  for i := 1 to ParamCount do
  begin
    KirvoFilesCheck(KirvoFilesOpen('picture.bmp', nil, dib, nil));
    dib := Apply(ParamStr(i), dib);
    KirvoFilesCheck(KirvoFilesSave(PAnsiChar(AnsiString(ParamStr(i) + '-pas.bmp')), dib, nil, nil, nil));
    GlobalFree(dib);
  end;
end.
"""
    (folder / "all_pas.pas").write_text(text)
    run("fpc", f"-Fu{SOURCE}/bindings/pascal", f"-Fl{BUILD}", f"-FU{folder}", "all_pas.pas", folder=folder)
    run("./all_pas", *(name for name, _, _ in snippets(folder, "pas")), folder=folder)


def as_python(folder):
    text = "import sys\nimport kirvo\nfrom ctypes import byref, c_void_p\nfrom kirvo import flat_files\n\n"
    cases = ""
    for name, code, result in snippets(folder, "py"):
        text += f"def {function(name)}(dib):\n{indented(code, 4)}    return {result}\n\n"
        cases += f"    {name!r}: {function(name)},\n"
    text += f"""cases = {{
{cases}}}
for name in sys.argv[1:]:
    opened = c_void_p()
    flat_files.check(flat_files.KirvoFilesOpen('picture.bmp', None, byref(opened), None))
    result = cases[name](opened.value)
    flat_files.check(flat_files.KirvoFilesSave(name + '-py.bmp', result, None, None, None))
"""
    (folder / "all.py").write_text(text)
    run(sys.executable, "all.py", *(name for name, _, _ in snippets(folder, "py")), folder=folder)


def as_line(folder):
    lines = sorted(folder.glob("*.line"))
    assert len(lines) > 60
    for path in lines:
        tool, *words = shlex.split(path.read_text())
        assert tool == "kirvo"
        run(BUILD / tool, "--quiet", *words, folder=folder)


def as_basic(folder):
    """Every function is declared, with as many parameters; every variable is dimensioned."""
    declared = {}
    for name in ("Kirvo.bas", "KirvoFiles.bas"):
        text = (SOURCE / "bindings/vb" / name).read_text().replace("_\n", "")
        for match in re.finditer(r"^Public (?:Declare (?:Function|Sub)|Function|Sub) (\w+)(?: Lib \"[^\"]*\")?"
                                 r"(?: Alias \"[^\"]*\")? ?\(([^)]*)\)", text, re.M):
            parameters = [each for each in match[2].split(",") if each.strip()]
            declared[match[1]] = len(parameters)
    for name, code, _ in snippets(folder, "bas"):
        known = {"dib", *re.findall(r"(?:Dim |, )(\w+)(?:\(255\))? As", code)}
        for line in code.splitlines():
            line = re.sub(r"'.*", "", re.sub(r'"(?:[^"]|"")*"', '""', line)).strip()
            if not line or re.match(r"Dim |For |Next|\w+Text = |\w+\(\w+\) = ", line):
                continue
            call = re.fullmatch(r"(?:(\w+) = )?(?:Kirvo(?:Files)?Check (?=\w+\())?(\w+)(?:\((.*)\)| (.*))", line)
            assert call, f"{name}: {line}"
            given = (call[3] if call[3] is not None else call[4]).split(",")
            assert call[2] in declared, f"{name}: {call[2]} is not declared"
            assert len(given) == declared[call[2]], f"{name}: {line}"
            for word in [call[1], *given]:
                for variable in re.findall(r"(?<![&\w.])[A-Za-z]\w*", word or ""):
                    assert variable in known | {"ByVal", "StrPtr", "status"}, f"{name}: {variable}: {line}"


def make_picture(path, width, height, seed):
    rows = b"".join(bytes((x * seed + y * 3 + c * 40) * (c + 1) & 255 for x in range(width)
                          for c in range(3)) + b"\0" * (-3 * width % 4) for y in range(height))
    numbers = (40, width, height, 1 | 24 << 16, 0, len(rows), 0, 0, 0, 0)
    path.write_bytes(b"BM" + (54 + len(rows)).to_bytes(4, "little") + bytes(4) +
                     (54).to_bytes(4, "little") +
                     b"".join(n.to_bytes(4, "little") for n in numbers) + rows)


def main():
    language = sys.argv[1]
    with tempfile.TemporaryDirectory() as top:
        folder = pathlib.Path(top)
        make_picture(folder / "picture.bmp", 41, 31, 5)
        make_picture(folder / "it's an other.bmp", 17, 13, 11)
        run(sys.argv[3], "picture.bmp", "it's an other.bmp", folder, folder=folder)
        expected = {path.stem: path.read_bytes() for path in folder.glob("*.bmp")}
        globals()["as_" + language](folder)
        if language == "basic":
            return
        assert len(expected) > 60
        extension = {"c": "c", "csharp": "cs", "pascal": "pas", "python": "py", "line": "line"}[language]
        for name in expected.keys() - {"picture", "it's an other"}:
            if (folder / f"{name}.{extension}").exists():  # none of a part of a picture as a line
                made = folder / f"{name}-{extension}.bmp"
                assert made.read_bytes() == expected[name], f"{name}: another picture"


main()
