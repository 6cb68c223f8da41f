"""The description of an interface, interface/kirvo.txt or interface/kirvo_files.txt, read."""
import dataclasses
import pathlib
import re


@dataclasses.dataclass
class Kind:
    name: str
    c: str
    meaning: str


@dataclasses.dataclass
class Parameter:
    kind: Kind | str  # a structure is known by its name
    name: str
    way: str = ""     # "in", "out" or "inout": an address
    count: str | None = None  # of an array
    nullable: bool = False

    @property
    def c(self):
        base = c_type(self.kind)
        return {"": base, "in": f"const {base}*", "out": f"{base}*", "inout": f"{base}*"}[self.way]


@dataclasses.dataclass
class Function:
    name: str
    result: Kind | None
    parameters: list[Parameter]
    home: str  # where Windows has it: "Kirvo", another library, or "" for nowhere

    @property
    def c_result(self):
        return self.result.c if self.result else "void"

    @property
    def c_parameters(self):
        return [parameter.c for parameter in self.parameters]

    @property
    def stack_bytes(self):
        """Bytes of arguments of a stdcall."""
        return sum(8 if c == "double" else 4 for c in self.c_parameters)


@dataclasses.dataclass
class Structure:
    name: str
    fields: list[Parameter | Function] = dataclasses.field(default_factory=list)

    @property
    def is_table(self):
        """Of functions, which only programs away from Windows use."""
        return isinstance(self.fields[0], Function)


@dataclasses.dataclass
class Group:
    name: str
    constants: dict[str, int] = dataclasses.field(default_factory=dict)
    enums: dict[str, dict[str, int]] = dataclasses.field(default_factory=dict)
    structures: list[Structure] = dataclasses.field(default_factory=list)
    functions: list[Function] = dataclasses.field(default_factory=list)


def c_type(kind):
    return kind.c if isinstance(kind, Kind) else kind


class Description:
    def __init__(self, name="kirvo"):
        self.kinds, self.groups, self.library = {}, [], "Kirvo"
        path = pathlib.Path(__file__).with_name(f"{name}.txt")
        text = re.sub(r"^#.*\n", "", path.read_text(), flags=re.MULTILINE)
        text = re.sub(r"\n {8,}", " ", text)  # a longer line goes on in the next
        for line in filter(str.strip, text.splitlines()):
            try:
                self._read(line)
            except Exception as error:
                raise ValueError(f"{path.name}: {line}") from error

    @property
    def constants(self):
        """Every named number, members of enumerations included."""
        return {name: value for group in self.groups
                for names in (group.constants, *group.enums.values())
                for name, value in names.items()}

    @property
    def structures(self):
        return [structure for group in self.groups for structure in group.structures]

    @property
    def functions(self):
        return [function for group in self.groups for function in group.functions]

    def _read(self, line):
        if line.startswith(" "):
            self._add(line.strip())
            return
        word, *rest = line.split(maxsplit=1)
        if word == "kind":
            name, c, meaning = re.split(" (?:=|is) ", rest[0], maxsplit=2)
            self.kinds[name] = Kind(name, c, meaning)
        elif word == "library":
            self.library = rest[0]  # the home of functions that name none
        elif word == "group":
            self.groups.append(Group(rest[0]))
        elif word == "enum":
            names = self.groups[-1].enums[rest[0]] = {}
            self._add = lambda entry: self._read_constant(names, entry)
        elif word == "constants":
            names = self.groups[-1].constants
            self._add = lambda entry: self._read_constant(names, entry)
        elif word == "struct":
            structure = Structure(rest[0])
            self.groups[-1].structures.append(structure)
            self._add = lambda entry: structure.fields.append(
                self._function(entry) if "(" in entry else self._parameter(entry))
        elif word == "functions":
            functions = self.groups[-1].functions
            self._add = lambda entry: functions.append(self._function(entry))
        else:
            raise ValueError("unknown word")

    @property
    def statuses(self):
        """Name and members of the enumeration of status codes: the first one."""
        return next(iter([(name, names) for group in self.groups
                          for name, names in group.enums.items()]))

    @staticmethod
    def _read_constant(names, entry):
        name, value = entry.split(" = ")
        names[name] = int(value, 0)

    def _kind(self, name):
        if name not in self.kinds:
            assert name in [structure.name for structure in self.structures], f"no kind {name}"
            return name
        return self.kinds[name]

    def _parameter(self, text):
        way, kind, name, count, null = re.fullmatch(
            r"(?:(in|out|inout) )?(\w+) (\w+)(?:\[(\w*)\])?(\?)?", text).groups()
        return Parameter(self._kind(kind), name, way or "", count, bool(null))

    def _function(self, text):
        name, parameters, result, home = re.fullmatch(
            r"(\w+)\((.*)\)(?: -> (\w+))?(?:, (.+))?", text).groups()
        return Function(name, self._kind(result) if result else None,
                        [self._parameter(part) for part in filter(None, parameters.split(", "))],
                        {None: self.library, "not on Windows": ""}.get(home, home))
