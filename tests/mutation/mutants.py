"""The small mistakes that can be made in a source: each is a Mutant."""

import hashlib
import re

from cppsource import CppSource

_NUMBER = re.compile(r"(?<![\w.])(?P<digits>0[xX][0-9a-fA-F]+|\d[\d']*(?:\.\d*)?(?:[eE][+-]?\d+)?)"
                     r"(?P<suffix>[uUlLfF]*)(?![\w.])")
_CHARACTER = re.compile(r"'\x01+'")

_REPLACEMENTS = {
    "comparison": {"<": ["<="], "<=": ["<"], ">": [">="], ">=": [">"], "==": ["!="], "!=": ["=="]},
    "arithmetic": {"+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"], "<<": [">>"],
                   ">>": ["<<"], "&": ["|"], "|": ["&"], "^": ["&"], "+=": ["-="], "-=": ["+="],
                   "*=": ["/="], "/=": ["*="], "|=": ["&="], "&=": ["|="]},
    "logic": {"&&": ["||"], "||": ["&&"]},
}
_BY_OPERATOR = {operator: (kind, others) for kind, table in _REPLACEMENTS.items()
                for operator, others in table.items()}
# The house style has blanks around binary operators, and none around references and templates.
_BINARY = re.compile(r"(?<=[\s])(?:<<|>>|<=|>=|==|!=|&&|\|\||[-+*/|&]=|[-+*/%<>&|^])(?=\s)")
_SIGN = re.compile(r"(?:(?<=[(,=?:{\[])|(?<=return)|(?<=[-+*/<>=&|,?:] )|(?<=return ))-(?=[\w(])")
_NOT = re.compile(r"(?<![\w)])!(?=[\w(*])")
_WORD = re.compile(r"\b(?:true|false|std::min|std::max)\b")
_WORDS = {"true": "false", "false": "true", "std::min": "std::max", "std::max": "std::min"}
_CONDITION = re.compile(r"\b(?:if|while)\s*(\()")
_DECLARATION = re.compile(r"\s*(?:const\b|auto\b|[\w:<>]+[*&]?\s+[*&]?\w+\s*[={;])")
_CALL = re.compile(r"\b(?!if\b|for\b|while\b|switch\b|return\b|sizeof\b|catch\b|function\b|min\b|max\b)\w+(?:<[^<>()]*>)?(\()")

_ASSIGNMENT = re.compile(r"\*?[\w:]+(?:(?:\.|->)\w+|\[[^\]]*\]|\(\))*(?:\+\+|--)?"
                         r"\s*(?:[-+*/%|&^]|<<|>>)?=(?!=)")
_STEP = re.compile(r"(?:\+\+|--)?[\w.:>\-]+(?:\+\+|--)?;$")
_CALL_HEAD = re.compile(r"(?:emit\s+)?\*?[\w:.\[\]\->~]+(?:<[^()]*>)?")
_KEYWORD = re.compile(r"(?:return|const|constexpr|static|auto|using|typedef|goto|throw|case|delete)\b")
_JUMPS = ("break;", "continue;", "return;")


class Mutant:
    def __init__(self, file, source, start, end, replacement, kind):
        self.file = file
        self.line = source.line_of(start)
        self.kind = kind
        self.start = start
        self.end = end
        self.replacement = replacement
        first, last = source.lines(start, end)
        self.before = squeeze(source.text[first:last])
        self.after = squeeze(source.text[first:start] + replacement + source.text[end:last])

    @property
    def name(self):
        """Tells the mutant from all others of the same sources."""
        what = f"{self.file}\n{self.start}\n{self.before}\n{self.after}"
        return hashlib.sha1(what.encode()).hexdigest()[:12]

    def apply(self, text):
        return text[:self.start] + self.replacement + text[self.end:]


def squeeze(text):
    """On one line, so that a mutant reads as one and a change of the layout leaves it the same."""
    return " ".join(text.split())


def find_mutants(file, text):
    """All mutants of a source, in the order of its lines."""
    source = CppSource(text)
    found = {}

    def add(start, end, replacement, kind):
        if source.is_mutable(start) and source.text[start:end] != replacement:
            mutant = Mutant(file, source, start, end, replacement, kind)
            found.setdefault(mutant.apply(text), mutant)

    for finder in (_constants, _operators, _signs, _words, _conditions, _choices, _statements,
                   _arguments):
        finder(source, add)
    return sorted(found.values(), key=lambda mutant: (mutant.start, mutant.end))


def _constants(source, add):
    for match in _NUMBER.finditer(source.code):
        for changed in _neighbours(match.group("digits")):
            add(match.start(), match.end(), changed + match.group("suffix"), "constant")


def _neighbours(digits):
    plain = digits.replace("'", "")
    if plain.lower().startswith("0x"):
        value = int(plain, 16)
        width = len(plain) - 2
        return [f"0x{near:0{width}X}" for near in (value + 1, value - 1) if near >= 0]
    if re.search(r"[.eE]", plain):
        value = float(plain)
        return [repr(near) for near in (value + 1, value - 1)]
    value = int(plain, 8 if plain.startswith("0") and len(plain) > 1 else 10)
    return [str(near) for near in (value + 1, value - 1) if near >= 0]


def _operators(source, add):
    for match in _BINARY.finditer(source.code):
        kind, others = _BY_OPERATOR[match.group()]
        for other in others:
            add(match.start(), match.end(), other, kind)


def _signs(source, add):
    for match in _SIGN.finditer(source.code):
        add(match.start(), match.end(), "", "sign")
    for match in _NOT.finditer(source.code):
        if not source.code[:match.start()].endswith(("if (", "while (")):
            add(match.start(), match.end(), "", "negation")


def _words(source, add):
    for match in _WORD.finditer(source.code):
        add(match.start(), match.end(), _WORDS[match.group()], "value")


def _conditions(source, add):
    for match in _CONDITION.finditer(source.code):
        opening = match.start(1)
        closing = source.partner(opening)
        if closing is None:
            continue
        condition = source.code[opening + 1:closing]
        # A lone == is turned to != already.
        lone = re.search(r" [!=]= ", condition) and not re.search(r"&&|\|\|", condition)
        if lone or _DECLARATION.match(condition):
            continue
        text = source.text[opening + 1:closing]
        if re.fullmatch(r"![\w.()\->:]+", text):
            add(opening + 1, closing, text[1:], "negation")
        else:
            add(opening + 1, closing, f"!({text})", "negation")


def _choices(source, add):
    """condition ? a : b, with a and b in each other's place."""
    for match in re.finditer(r"\s\?\s", source.code):
        colon = _at_same_depth(source.code, match.end(), ":")
        end = _at_same_depth(source.code, colon + 1, ",;") if colon else None
        if not end or "?" in source.code[match.end():end]:
            continue
        first = source.text[match.end():colon].strip()
        second = source.text[colon + 1:end].strip()
        if first != second:
            add(match.end(), end, f"{second} : {first}", "choice")


def _at_same_depth(code, start, wanted):
    """The next of the wanted characters, or the bracket that ends the expression."""
    depth = 0
    at = start
    while at < len(code):
        if code.startswith("::", at):
            at += 2
            continue
        if depth == 0 and (code[at] in wanted or code[at] in ")]}"):
            return at
        depth += (code[at] in "([{") - (code[at] in ")]}")
        at += 1
    return None


def _statements(source, add):
    for start, end in source.statements:
        if _is_droppable(source.code[start:end]) and not _is_last_of_switch(source.code, start, end):
            lines = source.text.count("\n", start, end)
            add(start, end, ";" + "\n" * lines, "dropped")


def _is_droppable(statement):
    if statement in _JUMPS:
        return True
    if _KEYWORD.match(statement):
        return statement.startswith("delete")
    if _ASSIGNMENT.match(statement) or _STEP.match(statement):
        return True
    head, opening, _ = statement.partition("(")
    return bool(opening) and bool(_CALL_HEAD.fullmatch(head)) and statement.endswith(");")


def _is_last_of_switch(code, start, end):
    """A break that leads where the statements go anyway."""
    if code[start:end] != "break;" or not code[end:].lstrip().startswith("}"):
        return False
    depth = 0
    at = start
    while depth >= 0 and at > 0:
        at -= 1
        depth += (code[at] == "}") - (code[at] == "{")
    return re.search(r"\bswitch\s*\([^;{}]*\)\s*$", code[:at]) is not None


def _arguments(source, add):
    for match in _CALL.finditer(source.code):
        opening = match.start(1)
        if not source.in_function(opening):
            continue
        arguments = source.arguments(opening)
        for left, right in zip(arguments, arguments[1:]):
            first = source.text[left[0]:left[1]]
            second = source.text[right[0]:right[1]]
            if _are_alike(first, second):
                between = source.text[left[1]:right[0]]
                add(left[0], right[1], second + between + first, "swapped")


def _are_alike(first, second):
    """Whether two arguments may have types that stand for each other."""
    return squeeze(first) != squeeze(second) and _sort(first) == _sort(second)


def _sort(argument):
    if argument.startswith(('"', "QStringLiteral", "QLatin1String")):
        return "text"
    if re.fullmatch(r"host(?:\(\))?|m_host|&host|this|nullptr", argument):
        return "object"
    if argument.startswith(("{", "[")):
        return argument[0]
    if argument.startswith("&") or argument.startswith("*"):
        return "pointer"
    # A parameter of a lambda or a local declaration has its type in front.
    if re.match(r"(?:const\s|[\w:]+[*&]?\s+\w+$)", argument):
        return "declaration " + argument
    return "value"
