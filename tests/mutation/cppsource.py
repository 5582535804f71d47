"""What a mutation needs to know of a C++ source: which characters are code, and which statements,
conditions and calls they form. It knows the sources of this project, not all of C++: whatever it
takes wrongly for code gives a mutant that does not compile."""

import bisect
import re

OPENING = "([{"
CLOSING = ")]}"

# Statements that only talk to a developer.
_DEBUG = re.compile(r"\b(?:qDebug|qInfo|qWarning|qCritical|qFatal)\s*\(")
_ASSERTION = re.compile(r"\b(?:[A-Z0-9_]*ASSERT[A-Z0-9_]*|NEEDS_EVE\w*)\s*\(")
_STATIC_ASSERT = re.compile(r"\bstatic_assert\s*\(")

_LITERAL = re.compile(
    r'//[^\n]*|/\*.*?\*/|R"(?P<delimiter>[^()\\ ]*)\(.*?\)(?P=delimiter)"'
    r'|"(?:\\.|[^"\\\n])*"|(?<![0-9A-Fa-f])\'(?:\\.|[^\'\\\n])+\'',
    re.DOTALL)
_DIRECTIVE = re.compile(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", re.MULTILINE)

_SCOPE = re.compile(r"^(?:template\s*<.*>\s*)?(?:inline\s+)?(?:namespace|class|struct|enum|union|extern)\b",
                    re.DOTALL)
_CODE = re.compile(r"(?:\)|\belse|\bdo|\btry|\)\s*(?:const|override|final|noexcept|mutable|\s)+"
                   r"|->\s*[\w:<>*& ]+)$")
_CONTROL = re.compile(r"\s*(?:else\b|do\b|(?:if|for|while|switch)\s*(?:constexpr\s*)?\()")
_LABEL = re.compile(r"\s*(?:case\b[^:?]*(?:::[^:?]*)*|default|public|private|protected|signals"
                    r"|public slots|private slots)\s*:(?!:)")


def mask(text):
    """The text with comments, preprocessor lines and the insides of literals blanked, so that what
    is left at each position is code."""

    def blank(match):
        found = match.group()
        if found.startswith("/"):
            return re.sub(r"[^\n]", " ", found)
        return found[0] + re.sub(r"[^\n]", "\x01", found[1:-1]) + found[-1]

    masked = _LITERAL.sub(blank, text)
    return _DIRECTIVE.sub(lambda match: re.sub(r"[^\n]", " ", match.group()), masked)


class Block:
    """What is between two braces: `scope` (declarations), `code` (statements) or `init`."""

    def __init__(self, kind, depth, start):
        self.kind = kind
        self.depth = depth  # of parentheses, where the block stands
        self.start = start  # of the statement around the block


class CppSource:
    def __init__(self, text):
        self.text = text
        self.code = mask(text)
        self.statements = []  # (start, end) of simple statements in function bodies, with the `;`
        self._code_areas = []
        self._line_starts = [0] + [match.end() for match in re.finditer("\n", text)]
        self._untouchable = self._find_untouchable()
        self._find_statements()

    def line_of(self, position):
        return bisect.bisect_right(self._line_starts, position)

    def lines(self, start, end):
        """The whole lines that hold the characters from start to end, as start and end."""
        first = self._line_starts[self.line_of(start) - 1]
        last = self.text.find("\n", max(start, end - 1))
        return first, len(self.text) if last < 0 else last

    def is_mutable(self, position):
        return not any(start <= position < end for start, end in self._untouchable)

    def in_function(self, position):
        return any(start <= position < end for start, end in self._code_areas)

    def partner(self, position):
        """Where the bracket that opens at `position` closes, or None."""
        depth = 0
        for at in range(position, len(self.code)):
            if self.code[at] in OPENING:
                depth += 1
            elif self.code[at] in CLOSING:
                depth -= 1
                if depth == 0:
                    return at
        return None

    def arguments(self, opening):
        """The (start, end) of each of the comma-separated items in the bracket opened there."""
        closing = self.partner(opening)
        if closing is None:
            return []
        items = []
        depth = angle = 0
        start = opening + 1
        for at in range(opening + 1, closing):
            character = self.code[at]
            if character in OPENING:
                depth += 1
            elif character in CLOSING:
                depth -= 1
            elif character == "<" and re.search(r"(?:_cast|pair|array|vector|map)$", self.code[start:at]):
                angle += 1
            elif character == ">" and angle > 0:
                angle -= 1
            elif character == "," and depth == 0 and angle == 0:
                items.append(self._trimmed(start, at))
                start = at + 1
        items.append(self._trimmed(start, closing))
        return [item for item in items if item[0] < item[1]]

    def _trimmed(self, start, end):
        piece = self.text[start:end]
        return start + len(piece) - len(piece.lstrip()), end - len(piece) + len(piece.rstrip())

    def _find_untouchable(self):
        spans = []
        for match in _STATIC_ASSERT.finditer(self.code):
            spans.append((match.start(), self.code.find(";", match.start())))
        for match in _DEBUG.finditer(self.code):
            spans.append((match.start(), self.code.find(";", match.start()) + 1))
        for match in _ASSERTION.finditer(self.code):
            closing = self.partner(match.end() - 1)
            condition_ends = self.code.find(",", match.end(), closing)
            # The text and place of an assertion are no behaviour; its condition is, unless the
            # macro has it inside.
            plain = "EVE_ASSERT" in match.group() or "Q_ASSERT" in match.group()
            spans.append((condition_ends if plain and condition_ends > 0 else match.end(), closing))
        return spans

    def _kind_of(self, head, parent):
        head = head.strip()
        if _SCOPE.match(head):
            return "scope"
        if _CODE.search(head) or (parent.kind == "code" and head == "") or head.endswith("]"):
            return "code"
        return "init"

    def _find_statements(self):
        outer = Block("scope", 0, 0)
        stack = [outer]
        code_starts = []
        depth = 0
        start = 0
        for at, character in enumerate(self.code):
            if character in "([":
                depth += 1
            elif character in ")]":
                depth -= 1
            elif character == "{":
                head = self.code[start:at]
                label = _LABEL.match(head)
                if label:
                    head = head[label.end():]
                kind = self._kind_of(head, stack[-1])
                stack.append(Block(kind, depth, start))
                if kind == "code":
                    code_starts.append(at)
                depth = 0
                start = at + 1
            elif character == "}" and len(stack) > 1:
                block = stack.pop()
                depth = block.depth
                if block.kind == "code":
                    self._code_areas.append((code_starts.pop(), at))
                ends = depth == 0 and block.kind != "init"
                start = at + 1 if ends else block.start
            elif character == ";" and depth == 0:
                if stack[-1].kind == "code":
                    self._add_statement(start, at + 1)
                start = at + 1

    def _add_statement(self, start, end):
        """Without the labels and control heads before it."""
        while True:
            rest = self.code[start:end]
            label = _LABEL.match(rest)
            control = _CONTROL.match(rest)
            if label:
                start += label.end()
            elif control and control.group().endswith("("):
                closing = self.partner(start + control.end() - 1)
                if closing is None or closing >= end:
                    return
                start = closing + 1
            elif control:
                start += control.end()
            else:
                break
        trimmed = self._trimmed(start, end)
        if trimmed[0] < trimmed[1]:
            self.statements.append(trimmed)
