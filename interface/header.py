"""What a header of include/ declares, and what is written there about it."""
import pathlib
import re

COMMENT = r"/\*\*((?:(?!\*/).)*)\*/"
DECLARATION = re.compile(rf"{COMMENT}\s*KIRVO_(?:FILES_)?API ([^;(]*?)\bWINAPI\s+(\w+)\s*\(([^;]*)\);", re.DOTALL)
CODE = re.compile(r"/\*\*(?!<)((?:(?!\*/).)*)\*/\s*(KIRVO_\w+) = (-?\d+)", re.DOTALL)
GROUP = re.compile(r"/\*\*((?:(?!\*/).)*?@defgroup (\w+) ([^\n]*)(?:(?!\*/).)*)\*/", re.DOTALL)


class Comment:
    """A documentation comment: its text, what it says of parameters, and of the result."""

    def __init__(self, comment=""):
        self.raw = re.sub(r"^ *\* ?", "", comment.strip(), flags=re.MULTILINE)
        text = re.sub(r"@code.*?@endcode", "", self.raw, flags=re.DOTALL)
        text = re.sub(r"@(ingroup|defgroup) .*", "", text)
        text, *tags = re.split(r"@(?=\w)", text)
        self.paragraphs = [one_line(part) for part in text.split("\n\n") if part.strip()]
        self.parameters, self.result = {}, ""
        for tag in tags:
            if match := re.match(r"param(?:\[[\w,]+\])?\s+([\w,]+)\s+(.*)", tag, re.DOTALL):
                for name in match[1].split(","):
                    self.parameters[name] = one_line(match[2])
            elif tag.startswith("return"):
                self.result = one_line(tag.removeprefix("return"))

    @property
    def sentence(self):
        """The first sentence."""
        text = self.paragraphs[0] if self.paragraphs else capital(self.result)
        return re.split(r"(?<=\.) (?=[A-Z(])", text)[0]

    @property
    def details(self):
        """What follows the first sentence, without tables."""
        first = "".join(self.paragraphs[:1])
        paragraphs = [first[len(self.sentence):].strip(), *self.paragraphs[1:]]
        return " ".join(text for text in paragraphs if text and "|---|" not in text)

    @property
    def brief(self):
        """The first sentence, up to a colon or semicolon at most."""
        sentence = re.split("[:;] ", self.sentence)[0].rstrip(":.")
        if sentence.count("(") > sentence.count(")"):
            sentence = sentence[:sentence.rindex("(")].rstrip()
        return sentence + "."


def one_line(text):
    return re.sub(r"\s+", " ", text.replace("#KIRVO_", "KIRVO_")).strip()


def capital(text):
    return text[:1].upper() + text[1:]


class Header:
    def __init__(self, name="kirvo.h"):
        self.text = (pathlib.Path(__file__).parent.parent / "include" / name).read_text()
        self.titles, self.group_comments, starts = {}, {}, []
        self.comments, self.groups, self.parameters = {}, {}, {}
        for match in GROUP.finditer(self.text):
            comment, group, self.titles[match[2]] = match.groups()
            self.group_comments[group] = Comment(comment)
            starts.append((match.start(), group))
        for match in DECLARATION.finditer(self.text):
            comment, _, name, parameters = match.groups()
            self.comments[name] = Comment(comment)
            self.groups[name] = [group for start, group in starts if start < match.start()][-1]
            self.parameters[name] = re.findall(r"(\w+)\s*(?:,|$)", parameters.replace("void", ""))
        self._read_names()
        self._read_fields()
        count = len(re.findall(r"^KIRVO_(?:FILES_)?API\b", self.text, re.MULTILINE))
        assert count == len(self.parameters), f"a function of {name} lacks WINAPI or a comment"

    def _read_fields(self):
        for body, structure in re.findall(r"^typedef struct \w+ {(.*?)^} (\w+);", self.text,
                                          re.MULTILINE | re.DOTALL):
            for before, name, behind in re.findall(
                    rf"(?:{COMMENT}\s*)?\w+ (\w+);(?:\s*/\*\*<((?:(?!\*/).)*)\*/)?", body, re.DOTALL):
                self.comments[f"{structure}.{name}"] = Comment(behind or before)

    def _read_names(self):
        """Names of numbers, structures and fields, with the comments before or behind them."""
        for before, name in re.findall(rf"{COMMENT}\s*(KIRVO_\w+) =", self.text, re.DOTALL):
            self.comments[name] = Comment(before)
        for before, name in re.findall(rf"{COMMENT}\s*typedef (?:struct|enum) (\w+) {{", self.text,
                                       re.DOTALL):
            self.comments[name] = Comment(before)
        for name, behind in re.findall(r"^#define (\w+) .*?/\*\*< (.*?) \*/", self.text, re.MULTILINE):
            self.comments[name] = Comment(behind)
        for name, behind in re.findall(rf"^    (\w+) = [-\w]+,?\s*/\*\*<((?:(?!\*/).)*)\*/", self.text,
                                       re.MULTILINE | re.DOTALL):
            self.comments[name] = Comment(behind)
        for name, behind in re.findall(r"(\w+);\s*/\*\*<((?:(?!\*/).)*)\*/", self.text, re.DOTALL):
            self.comments[name] = Comment(behind)
        for behind, name in re.findall(rf"{COMMENT}\s*\w+ \(\*(\w+)\)", self.text, re.DOTALL):
            self.comments[name] = Comment(behind)

    def field(self, structure, field):
        """The comment of a field."""
        return self.comments.get(f"{structure.name}.{field.name}") or self.comments[field.name]

    @property
    def structures(self):
        return re.findall(r"^typedef struct (\w+) {", self.text, re.MULTILINE)

    @property
    def constants(self):
        """Members of enumerations and numeric macros."""
        return (re.findall(r"^    (\w+) = [-\w]+,?(?:\s*/\*\*<.*)?$", self.text, re.MULTILINE) +
                re.findall(r"^#define (\w+) [(\d]", self.text, re.MULTILINE))
