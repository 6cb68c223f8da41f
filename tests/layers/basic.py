"""Runs modules and classes of Visual Basic 7 with the libraries built here: as much of the language as
they make use of. Numbers that do not fit, names declared twice and names unknown are errors, as they
are there.
"""
import ctypes
import operator
import re

KINDS = {"long": ctypes.c_int32, "longptr": ctypes.c_ssize_t, "integer": ctypes.c_int16, "byte": ctypes.c_uint8,
         "double": ctypes.c_double}
TOKEN = re.compile(r'"(?:[^"]|"")*"|&H[0-9A-Fa-f]+&?|\d+(?:\.\d+)?[&#]?|\w+\$?|<>|<=|>=|[-+*/\\&=<>().,]')
HEAD = re.compile(r"(?:(?:Public|Private) )?(Sub|Function|Property Get) (\w+)\((.*)\)(?: As (\w+))?$")
DECLARE = re.compile(r'(?:Public|Private) Declare PtrSafe (?:Sub|Function) (\w+) Lib "([\w.]+)"(?: Alias "(\w+)")? '
                     r"\((.*)\)(?: As (\w+))?$")
# Each operator with what it does, those that bind least first. True is -1.
OPERATORS = (
    {"or": operator.or_}, {"and": operator.and_}, {"not": None},
    {"=": lambda a, b: -(a == b), "<>": lambda a, b: -(a != b), "<": lambda a, b: -(a < b), ">": lambda a, b: -(a > b),
     "<=": lambda a, b: -(a <= b), ">=": lambda a, b: -(a >= b), "is": lambda a, b: -(a is b)},
    {"&": lambda a, b: f"{a}{b}"}, {"+": operator.add, "-": operator.sub}, {"mod": lambda a, b: a % b},
    {"*": operator.mul, "/": operator.truediv})


def basic_lines(path, constants):
    """Logical lines without comments, of the branches that the constants choose."""
    raw = path.read_bytes()
    assert raw.isascii() and raw.count(b"\n") == raw.count(b"\r\n"), f"{path.name}: line ends"
    text = raw.decode().replace("\r\n", "\n")
    for statement in re.findall(r"(?:.* _\n)+.*\n", text):
        assert statement.count("\n") <= 25, f"too many lines: {statement}"
    text = re.sub(r" _\n +", " ", text).replace("( ", "(")
    branches = []
    for line in text.splitlines():
        assert len(line) < 1023, line
        line = re.sub(r"""^((?:[^'"]|"[^"]*")*)'.*""", r"\1", line).strip()
        if match := re.fullmatch(r"#If (\w+) Then", line):
            branches.append(constants[match[1]])
        elif line == "#Else":
            branches[-1] = not branches[-1]
        elif line == "#End If":
            branches.pop()
        else:
            assert not line.startswith("#"), line
            if line and all(branches):
                yield line
    assert not branches


class Error(Exception):
    """What Err.Raise raises."""

    def __init__(self, number, source, text):
        super().__init__(text)
        self.number, self.source = number, source


class Leave(Exception):
    """Exit Sub."""


class Number:
    def __init__(self, data):
        self.data = data

    address = property(lambda self: ctypes.addressof(self.data))

    @property
    def value(self):
        return self.data.value

    @value.setter
    def value(self, value):
        if not isinstance(self.data, ctypes.c_double):
            value = round(value)
        self.data.value = value
        if self.data.value != value:
            raise OverflowError(f"{value} as {type(self.data).__name__}")


class Thing:
    """A variable that holds an object."""
    value = None


class Flag(Thing):
    value = property(lambda self: self.__dict__.get("kept", 0),
                     lambda self, value: self.__dict__.update(kept=-bool(value)))


class Text:
    """UTF-16, which calls may write to."""

    def __init__(self):
        self.value = ""

    address = property(lambda self: ctypes.addressof(self.room))

    @property
    def value(self):
        return bytes(self.room)[:-2].decode("utf-16-le")

    @value.setter
    def value(self, text):
        self.room = ctypes.create_string_buffer(text.encode("utf-16-le") + b"\0", len(text.encode("utf-16-le")) + 2)


class Array:
    def __init__(self, kind, last=None):
        self.kind = kind
        if last is not None:
            self.redim(last)

    def redim(self, last):
        self.items = (self.kind * (last + 1))()

    def element(self, index):
        if not 0 <= index < len(self.items):
            raise IndexError(index)
        return Number(self.kind.from_buffer(self.items, index * ctypes.sizeof(self.kind)))


class Record:
    def __init__(self, kind):
        self.data = kind()

    address = property(lambda self: ctypes.addressof(self.data))

    def member(self, name):
        kind = dict(self.data._fields_)[name]
        return Number(kind.from_buffer(self.data, getattr(type(self.data), name).offset))


class Result:
    """What a call gives, which is no variable."""

    def __init__(self, value):
        self.value = value


class Instance:
    """An object of a class; its procedures are called as Python's are."""

    def __init__(self, program, module):
        self.__dict__.update(program=program, module=module,
                             fields={name: program.variable(kind) for name, kind in module.variables.items()})

    def __getattr__(self, name):
        if name.lower() in self.fields:
            return self.fields[name.lower()].value
        if name.lower() not in self.module.procedures:
            raise AttributeError(name)
        procedure = self.module.procedures[name.lower()]
        if procedure.word == "Property Get":
            return self.program.call(procedure, [], self)
        return lambda *given: self.program.call(procedure, [
            one if hasattr(one, "value") or isinstance(one, Array) else Result(one) for one in given], self)

    def __setattr__(self, name, value):
        self.fields[name.lower()].value = value

    def __del__(self):
        self.Class_Terminate()


class Expressions:
    """Reads expressions into functions of a frame, those that name something into functions that give it."""

    def __init__(self, text):
        self.tokens, self.at = TOKEN.findall(text), 0
        assert "".join(self.tokens) == text.replace(" ", "") or '"' in text, text

    @property
    def next(self):
        return self.tokens[self.at].lower() if self.at < len(self.tokens) else ""

    def take(self, expected=None):
        token = self.tokens[self.at]
        assert expected in (None, token), f"{token}, not {expected}: {self.tokens}"
        self.at += 1
        return token

    def expression(self, level=0):
        if level == len(OPERATORS):
            return self.operand()
        if "not" in OPERATORS[level]:
            if self.next != "not":
                return self.expression(level + 1)
            self.take()
            inner = self.expression(level)
            return lambda frame: Result(~inner(frame).value)
        left = self.expression(level + 1)
        while self.next in OPERATORS[level]:
            left = self.both(OPERATORS[level][self.take().lower()], left, self.expression(level + 1))
        return left

    @staticmethod
    def both(work, left, right):
        return lambda frame: Result(work(left(frame).value, right(frame).value))

    def operand(self):
        token = self.take()
        if token == "-":
            inner = self.operand()
            return lambda frame: Result(-inner(frame).value)
        if token == "(":
            inner = self.expression()
            self.take(")")
            return inner
        if token[0] == '"':
            return lambda frame: Result(token[1:-1].replace('""', '"'))
        if token[0] == "&":
            digits = token[2:].rstrip("&")
            value = int(digits, 16)
            bits = 16 if token[-1] != "&" and len(digits) <= 4 else 32
            return lambda frame: Result(value - (value >> bits - 1 << bits))
        if token[0].isdigit():
            return lambda frame: Result(float(token) if "." in token else int(token.rstrip("&#")))
        if token == "New":
            name = self.take()
            return lambda frame: Result(frame.program.new(name))
        if token == "AddressOf":
            name = self.take()
            return lambda frame: Result(list(frame.program.procedures).index(name.lower()))
        return self.name(token)

    def name(self, token):
        """A name with what follows: members, and arguments in brackets."""
        found = (lambda given: lambda frame: frame.named(token.lower(), given(frame)))(self.given())
        while self.next == ".":
            self.take()
            member = self.take()
            found = (lambda owner, member, given: lambda frame:
                     frame.member(owner(frame), member, given(frame)))(found, member, self.given())
        return found

    def given(self):
        """The arguments in brackets, None without any."""
        if self.next != "(":
            return lambda frame: None
        self.take()
        arguments = self.arguments(")")
        self.take(")")
        return lambda frame: [one(frame) for one in arguments]

    def arguments(self, end=""):
        found = []
        while self.next != end:
            if found:
                self.take(",")
            found.append(self.expression())
        return found


class Frame:
    """A call that is under way."""

    def __init__(self, program, procedure, me):
        self.program, self.procedure, self.me = program, procedure, me
        self.places = {}

    def declare(self, name, place):
        assert name.lower() not in self.places, f"declared twice in {self.procedure.name}: {name}"
        self.places[name.lower()] = place

    def named(self, name, given):
        """The variable of a name, or the result of a call."""
        own = self.procedure and name == self.procedure.name.lower() and given is not None
        for places in (self.places, self.me.fields if self.me else {}, self.program.variables):
            if name in places and not own:
                return self.element(places[name], given)
        if name == "me":
            return Result(self.me)
        if self.me and name in self.me.module.procedures:
            return Result(self.program.call(self.me.module.procedures[name], given or [], self.me))
        return Result(self.program.call_named(name, given or []))

    @staticmethod
    def element(place, given):
        return place if given is None else place.element(*(one.value for one in given)) if given else place

    def member(self, owner, name, given):
        if isinstance(owner, Record):
            return owner.member(name.lower())
        value = getattr(owner.value, name)
        return Result(value(*(one if isinstance(one, Array) or hasattr(one, "address") else one.value
                              for one in given or [])) if callable(value) else value)


class Procedure:
    def __init__(self, word, name, parameters, result):
        self.word, self.name, self.result, self.body = word, name, result, []
        self.parameters = [re.fullmatch(r"(Optional )?By(Val|Ref) (\w+)(\(\))? As (\w+)(?: = (.*))?", one).groups()
                           for one in filter(None, parameters.split(", "))]


class Module:
    def __init__(self):
        self.procedures, self.variables = {}, {}


class Program:
    """Modules and classes, by the lines that stand for one kind of Visual Basic, and `system`: what is called
    of Windows, by its name."""

    def __init__(self, libraries, system):
        self.libraries, self.system = libraries, system
        self.classes, self.kinds, self.declared, self.procedures = {}, dict(KINDS), {}, {}
        self.variables = {name: Result(value) for name, value in
                          (("true", -1), ("false", 0), ("nothing", None), ("vbnullstring", None),
                           ("vbobjecterror", -2147221504))}
        self.builtin = {
            "varptr": lambda place: place.address, "strptr": lambda place: place.address,
            "lenb": lambda place: ctypes.sizeof(place.data), "left$": lambda text, count: text.value[:count.value],
            "string$": lambda count, sign: sign.value * count.value, "clng": lambda number: round(number.value),
            "instr": lambda text, part: text.value.find(part.value) + 1}

    def new(self, name):
        return Instance(self, self.classes[name.lower()])

    def variable(self, kind):
        kind = kind.lower()
        if kind in self.kinds:
            data = self.kinds[kind]
            return Record(data) if issubclass(data, ctypes.Structure) else Number(data())
        return {"string": Text, "boolean": Flag}.get(kind, Thing)()

    def load(self, lines, class_name=None):
        """A module, or a class where it has a name."""
        lines, module = iter(lines), Module()
        if class_name:
            self.classes[class_name.lower()] = module
        for line in lines:
            if match := HEAD.match(line):
                procedure = Procedure(*match.groups())
                procedure.body = self.block(lines, re.compile(f"End {procedure.word.split()[0]}$"))[0]
                (module.procedures if class_name else self.procedures)[procedure.name.lower()] = procedure
            elif match := DECLARE.match(line):
                name, library, alias, parameters, result = match.groups()
                self.declared[name.lower()] = (library, alias or name, Procedure("Declare", name, parameters, result))
            elif match := re.match(r"P\w+ Enum ", line):
                while (line := next(lines)) != "End Enum":
                    name, value = line.split(" = ")
                    self.variables[name.lower()] = Result(int(value))
            elif match := re.match(r"P\w+ Type (\w+)$", line):
                fields = []
                while (line := next(lines)) != "End Type":
                    name, kind = line.split(" As ")
                    fields.append((name.lower(), self.kinds[kind.lower()]))
                self.kinds[match[1].lower()] = type(match[1], (ctypes.Structure,), {"_fields_": fields})
            elif match := re.match(r"P\w+ Const (\w+) As Long = (.*)$", line):
                self.variables[match[1].lower()] = Result(Expressions(match[2]).expression()(None).value)
            elif match := re.match(r"P\w+ (\w+) As (\w+)$", line):
                if class_name:
                    module.variables[match[1].lower()] = match[2]
                else:
                    self.variables[match[1].lower()] = self.variable(match[2])
            else:
                assert re.match("Attribute |Option Explicit", line), line

    def block(self, lines, end):
        """Statements up to a line that ends them, and that line."""
        found = []
        for line in lines:
            if end.match(line):
                return found, line
            found.append(self.statement(line, lines))
        raise AssertionError(f"no {end.pattern}")

    def statement(self, line, lines):
        if match := re.match(r"(?:Dim|Const) (.*)$", line):
            return self.declarations(match[1])
        if match := re.match(r"If (.*) Then$", line):
            return self.choice(match[1], lines)
        if match := re.match(r"If (.*?) Then (.*?)(?: Else (.*))?$", line):
            condition = Expressions(match[1]).expression()
            then, other = (self.statement(part, lines) if part else lambda frame: None for part in match.groups()[1:])
            return lambda frame: (then if condition(frame).value else other)(frame)
        if match := re.match(r"For (\w+) = (.*) To (.*)$", line):
            return self.loop(match, lines)
        if match := re.match(r"Select Case (.*)$", line):
            return self.selection(Expressions(match[1]).expression(), lines)
        if match := re.match(r"ReDim (\w+)\(0 To (.*)\)$", line):
            last = Expressions(match[2]).expression()
            return lambda frame: frame.places[match[1].lower()].redim(last(frame).value)
        if re.match("Exit (Sub|Function|Property)$", line):
            return self.leave
        if match := re.match(r"Err\.Raise (.*)$", line):
            given = Expressions(match[1]).arguments()
            return lambda frame: self.throw(*(one(frame).value for one in given))
        return self.assignment(line) or self.call_statement(line)

    @staticmethod
    def leave(frame):
        raise Leave

    @staticmethod
    def throw(*given):
        raise Error(*given)

    def declarations(self, text):
        found = []
        for part in text.split(", "):
            name, array, last, kind, value = re.fullmatch(
                r"(\w+)(\((?:0 To (\d+))?\))? As (\w+)(?: = (.*))?", part).groups()
            found.append((name, array, int(last) if last else None, kind,
                          Expressions(value).expression() if value else None))

        def work(frame):
            for name, array, last, kind, value in found:
                place = Array(self.kinds[kind.lower()], last) if array else self.variable(kind)
                if value:
                    place.value = value(frame).value
                frame.declare(name, place)
        return work

    def choice(self, condition, lines):
        cases, line = [], f"ElseIf {condition} Then"
        while line != "End If":
            test = (lambda frame: Result(-1)) if line == "Else" else \
                Expressions(re.fullmatch("ElseIf (.*) Then", line)[1]).expression()
            body, line = self.block(lines, re.compile("ElseIf |Else$|End If$"))
            cases.append((test, body))

        def work(frame):
            self.execute(next((body for test, body in cases if test(frame).value), []), frame)
        return work

    def loop(self, match, lines):
        first, last = (Expressions(match[part]).expression() for part in (2, 3))
        body, _ = self.block(lines, re.compile("Next$"))

        def work(frame):
            for value in range(first(frame).value, last(frame).value + 1):
                frame.places[match[1].lower()].value = value
                self.execute(body, frame)
        return work

    def selection(self, chosen, lines):
        cases, line = [], next(lines)
        while line != "End Select":
            test = None if line == "Case Else" else Expressions(line.removeprefix("Case ")).expression()
            body, line = self.block(lines, re.compile("Case |End Select$"))
            cases.append((test, body))

        def work(frame):
            value = chosen(frame).value
            self.execute(next((body for test, body in cases if test is None or test(frame).value == value), []), frame)
        return work

    @staticmethod
    def assignment(line):
        reader = Expressions(line.removeprefix("Set "))
        target = reader.name(reader.take())
        if reader.next != "=":
            return None
        reader.take()
        source = reader.expression()
        assert not reader.next, line

        def work(frame):
            value = source(frame).value
            place = target(frame)
            assert not isinstance(place, Result) or not line.startswith("Set "), line
            place.value = value
        # An object's own variable is no place of this frame.
        if match := re.match(r"Set (\w+)\.(\w+) = ", line):
            return lambda frame: setattr(frame.named(match[1].lower(), None).value, match[2], source(frame).value)
        return work

    @staticmethod
    def call_statement(line):
        reader = Expressions(line)
        name, member = reader.take(), None
        if reader.next == ".":
            reader.take()
            member = reader.take()
        arguments = reader.arguments()

        def work(frame):
            given = [one(frame) for one in arguments]
            if member:
                frame.member(frame.named(name.lower(), None), member, given)
            else:
                frame.named(name.lower(), given)
        return work

    @staticmethod
    def execute(body, frame):
        for statement in body:
            statement(frame)

    def call(self, procedure, given, me=None):
        frame = Frame(self, procedure, me)
        if procedure.result:
            frame.declare(procedure.name, self.variable(procedure.result))
        assert len(given) <= len(procedure.parameters), procedure.name
        for number, (_, way, name, array, kind, default) in enumerate(procedure.parameters):
            if number == len(given):
                given = [*given, Expressions(default).expression()(frame)]
            place = given[number]
            if not array and (way == "Val" or isinstance(place, Result)):
                place = self.variable(kind)
                place.value = given[number].value
            frame.declare(name, place)
        try:
            self.execute(procedure.body, frame)
        except Leave:
            pass
        return frame.places[procedure.name.lower()].value if procedure.result else None

    def call_named(self, name, given):
        if name in self.procedures:
            return self.call(self.procedures[name], given)
        if name in self.builtin:
            return self.builtin[name](*given)
        library, exported, procedure = self.declared[name]
        assert len(given) == len(procedure.parameters), name
        values = [self.passed(way, kind, one) for (_, way, _, _, kind, _), one in zip(procedure.parameters, given)]
        if exported in self.system:
            return self.system[exported](*(one if isinstance(one, (Thing, type(None))) else one.value for one in values))
        function = getattr(self.libraries[library], exported)
        function.restype = self.kinds[procedure.result.lower()] if procedure.result else None
        return function(*values)

    def passed(self, way, kind, given):
        """An argument as a function of a library takes it."""
        if way == "Ref":
            return given if isinstance(given, Thing) else ctypes.c_void_p(given.address)
        if kind == "String":
            return None if given.value is None else ctypes.c_char_p(given.value.encode())
        number = self.variable(kind)
        number.value = given.value
        return number.data
