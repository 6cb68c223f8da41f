"""The methods of the object layers, interface/layers.txt, read."""
import dataclasses
import pathlib
import re

from description import Parameter

# The groups whose functions are effects: each is reachable in every layer.
EFFECTS = ("pixel", "depth", "reduce", "copy", "turn", "zoom", "point", "filter", "pattern")
AREA = (("x", "y", "width", "height"), ("left", "top", "width", "height"))


@dataclasses.dataclass
class Argument:
    """What a method's call gives to one parameter of its function."""
    parameter: Parameter
    role: str  # own, other, x, y, width, height of the area; status; given; fixed
    value: str | None = None  # a default, or what is fixed
    meaning: str = ""  # as kirvo.h tells it

    @property
    def name(self):
        return "other" if self.role == "other" else self.parameter.name

    @property
    def kind(self):
        """The kind's name; a flag is a whole number that is yes or no."""
        return "flag" if self.value in ("true", "false") else self.parameter.kind.name

    @property
    def optional(self):
        return self.value is not None


@dataclasses.dataclass
class Method:
    way: str  # method, change or static
    name: str
    function: object
    arguments: list[Argument]
    order: list[str]
    comment: object
    depths: list[int]

    @property
    def parameters(self):
        """What the caller gives, those without a default first."""
        given = {argument.parameter.name: argument for argument in self.arguments
                 if argument.role in ("given", "other")}
        return [given[name] for name in self.order]

    @property
    def sentence(self):
        """What it does; a function that works in place gives a new image here."""
        text = self.comment.sentence
        return re.sub(",? in place", "", text) if self.way == "method" else text

    @property
    def has_area(self):
        return any(argument.role == "x" for argument in self.arguments)

    @property
    def other(self):
        """Whether a second picture is given."""
        return any(argument.role == "other" for argument in self.arguments)

    @property
    def makes(self):
        """Whether the function gives a new image, rather than working in place."""
        return self.function.result.name == "image"


class Layers:
    def __init__(self, description, header):
        self.functions = {function.name: function for function in description.functions}
        self.effects = {function.name for group in description.groups if group.name in EFFECTS
                        for function in group.functions} | {"DibModifyHue", "DibModifyHueEx"}
        self.header, self.methods = header, []
        self.own, self.same = {}, {}
        path = pathlib.Path(__file__).with_name("layers.txt")
        for line in path.read_text().splitlines():
            if line and not line.startswith("#"):
                try:
                    self._read(line)
                except Exception as error:
                    raise ValueError(f"{path.name}: {line}") from error
        missing = self.effects - self.covered
        assert not missing, f"layers.txt lacks {sorted(missing)}"

    @property
    def covered(self):
        return ({method.function.name for method in self.methods} |
                {name for names in (*self.own.values(), *self.same.values()) for name in names})

    @property
    def names(self):
        """Of every method that a layer has, those by hand included."""
        return [method.name for method in self.methods] + list(self.own)

    def _read(self, line):
        word, rest = line.split(maxsplit=1)
        if word in ("own", "same"):
            name, functions = rest.split(" = ")
            functions = functions.split(", ")
            assert set(functions) <= set(self.functions)
            getattr(self, word).setdefault(name, []).extend(functions)
            return
        name, listed, function, depths, fixed = re.fullmatch(
            r"(\w+)\((.*?)\) = (\w+)(?: at ([\d, ]+))?(?: with (.*))?", rest).groups()
        function = self.functions[function]
        defaults = dict((part.split(" = ") + [None])[:2] for part in filter(None, listed.split(", ")))
        fixed = dict(part.split(" = ") for part in filter(None, (fixed or "").split(", ")))
        arguments = list(self._arguments(function, word, defaults, fixed))
        assert {one.parameter.name for one in arguments if one.role in ("given", "other")} == set(defaults)
        comment = self.header.comments[function.name]
        for one in arguments:
            one.meaning = comment.parameters[one.parameter.name]
        depths = self._depths(function, comment, word) if depths is None else \
            [int(number) for number in depths.split(", ")]
        self.methods.append(Method(word, name, function, arguments, list(defaults), comment, depths))

    @staticmethod
    def _arguments(function, word, defaults, fixed):
        names = [parameter.name for parameter in function.parameters]
        area = next((area for area in AREA if " ".join(area) in " ".join(names)
                     and not set(area) & set(defaults)
                     and not set(area) & set(fixed)), ()) if word == "method" else ()
        seen = word == "static"
        for parameter in function.parameters:
            name = parameter.name
            if getattr(parameter.kind, "name", "") == "image" and not seen:
                seen = True
                yield Argument(parameter, "own")
            elif getattr(parameter.kind, "name", "") == "image":
                yield Argument(parameter, "other")
            elif name == "status":
                yield Argument(parameter, "status")
            elif name in area:
                yield Argument(parameter, ("x", "y", "width", "height")[area.index(name)])
            elif name in fixed:
                yield Argument(parameter, "fixed", fixed[name])
            else:
                assert name in defaults, f"nothing is given for {name}"
                yield Argument(parameter, "given", defaults[name])

    @staticmethod
    def _depths(function, comment, word):
        """The depths that a function takes, as kirvo.h tells them."""
        if word == "static":
            return []
        for parameter in function.parameters:
            text = comment.parameters[parameter.name]
            if match := re.match(r"packed DIB of ((?:\d+(?:, | or | )?)+)bits", text):
                return [int(number) for number in re.findall(r"\d+", match[1])]
        raise ValueError("kirvo.h does not tell the depths")
