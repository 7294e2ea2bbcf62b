"""Finds the mutants of C++ sources, with libclang.

Each kind of mutant is a rule of `Finder`, named after the part of the language that it changes.
"""

import bisect
import dataclasses
import re

from clang.cindex import CursorKind, TranslationUnit, TypeKind

TOKEN = re.compile(
    r"//[^\n]*|/\*.*?\*/"
    r'|(?:u8|[uUL])?R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"'
    r'|(?:u8|[uUL])?"(?:\\.|[^"\\])*"'
    r"|(?:u8|[uUL])?'(?:\\.|[^'\\])+'"
    r"|[A-Za-z_]\w*|\d(?:'\d|[\w.])*"
    r"|<=>|<<=|>>=|\.\.\.|->|\+\+|--|&&|\|\||::|[-+*/%&|^!=<>]=|<<|>>|\S",
    re.DOTALL)

OTHER_OPERATORS = {
    "<": ["<=", ">="], ">": [">=", "<="], "<=": ["<", ">"], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "&": ["|"], "|": ["&"], "^": ["&"], "<<": [">>"], ">>": ["<<"], "&&": ["||"], "||": ["&&"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "%=": ["*="],
    "&=": ["|="], "|=": ["&="], "^=": ["&="], "<<=": [">>="], ">>=": ["<<="],
}
COMPARISONS = ("<", ">", "<=", ">=", "==", "!=")
LITERALS = (CursorKind.INTEGER_LITERAL, CursorKind.FLOATING_LITERAL, CursorKind.CHARACTER_LITERAL,
            CursorKind.CXX_BOOL_LITERAL_EXPR)
LOOPS = (CursorKind.WHILE_STMT, CursorKind.FOR_STMT, CursorKind.DO_STMT)
DECLARATIONS = (CursorKind.VAR_DECL, CursorKind.FIELD_DECL, CursorKind.PARM_DECL, CursorKind.FUNCTION_DECL,
                CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR,
                CursorKind.CONVERSION_FUNCTION, CursorKind.FUNCTION_TEMPLATE)
# What they contain is a constant, a type or a name.
WITHOUT_CODE = (CursorKind.STATIC_ASSERT, CursorKind.ENUM_DECL, CursorKind.TYPE_ALIAS_DECL,
                CursorKind.TYPE_ALIAS_TEMPLATE_DECL, CursorKind.TYPEDEF_DECL, CursorKind.TEMPLATE_NON_TYPE_PARAMETER,
                CursorKind.TEMPLATE_TYPE_PARAMETER, CursorKind.CXX_BASE_SPECIFIER)
STATEMENTS = (CursorKind.CALL_EXPR, CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR,
              CursorKind.UNARY_OPERATOR, CursorKind.UNEXPOSED_EXPR, CursorKind.CXX_DELETE_EXPR,
              CursorKind.CXX_THROW_EXPR, CursorKind.BREAK_STMT, CursorKind.CONTINUE_STMT, CursorKind.PAREN_EXPR,
              CursorKind.CONDITIONAL_OPERATOR)
# Functions whose result does not depend on the order of their arguments.
SYMMETRIC = re.compile(r"min|max|_mm(256)?_(and|or|add|cmpeq)_\w+")
INTEGERS = (TypeKind.CHAR_U, TypeKind.UCHAR, TypeKind.CHAR16, TypeKind.CHAR32, TypeKind.USHORT, TypeKind.UINT,
            TypeKind.ULONG, TypeKind.ULONGLONG, TypeKind.CHAR_S, TypeKind.SCHAR, TypeKind.WCHAR, TypeKind.SHORT,
            TypeKind.INT, TypeKind.LONG, TypeKind.LONGLONG)


@dataclasses.dataclass(frozen=True, order=True)
class Place:
    """A piece of a source, and what a mutant has instead.

    `form` says how both are put into one source: "value" (an expression), "statement" (removed, `text` is empty),
    "declared" (a place after the variable that a condition declares, whose name is `text`), "call" (contains other
    places of the mutant, and does not change), or the type that both expressions are converted to.
    """

    begin: int
    end: int
    form: str
    text: str


@dataclasses.dataclass(frozen=True, order=True)
class Mutant:
    """A change to a source, described by the text of its line, so that it is found again when lines move."""

    file: str
    places: tuple
    # Counted from 1, in bytes.
    position: tuple
    line: str
    change: str

    def place(self):
        return f"{self.file}:{self.position[0]}:{self.position[1]}"

    def identity(self):
        return self.file, self.line, self.change


def kind_of(cursor):
    try:
        return cursor.kind
    except ValueError:  # newer than these bindings
        return None


def plain(text):
    """Returns text on one line."""
    return " ".join(text.split())


class Source:
    """The text of a file, one character per byte, and its tokens without comments."""

    def __init__(self, path):
        self.text = path.read_bytes().decode("latin-1")
        self.tokens = [match.span() for match in TOKEN.finditer(self.text)
                       if not match[0].startswith(("//", "/*"))]
        self._begins = [begin for begin, _ in self.tokens]

    def from_token(self, offset):
        """Returns the index of the first token at `offset` or after it."""
        return bisect.bisect_left(self._begins, offset)

    def word(self, index):
        if not 0 <= index < len(self.tokens):
            return ""
        begin, end = self.tokens[index]
        return self.text[begin:end]

    def between(self, begin, end):
        """Returns the tokens that begin in [begin, end)."""
        first, last = self.from_token(begin), self.from_token(end)
        return [(self.word(index), *self.tokens[index]) for index in range(first, last)]

    def closing(self, index):
        """Returns the index of the parenthesis that closes the one at `index`."""
        depth = 0
        for at in range(index, len(self.tokens)):
            depth += {"(": 1, ")": -1}.get(self.word(at), 0)
            if depth == 0:
                return at
        raise ValueError("unbalanced parentheses")

    def joined(self, begin, end):
        """Returns the text of [begin, end) without comments, on one line."""
        words, last = [], begin
        for word, start, stop in self.between(begin, end):
            words += [" ", word] if start > last else [word]
            last = stop
        return "".join(words).strip()

    def line(self, offset):
        begin = self.text.rfind("\n", 0, offset) + 1
        end = self.text.find("\n", offset)
        return plain(self.text[begin:end if end >= 0 else None]).encode("latin-1").decode("utf-8", "replace")

    def position(self, offset):
        return self.text.count("\n", 0, offset) + 1, offset - self.text.rfind("\n", 0, offset)


class Finder:
    """Collects the mutants of one file from a translation unit that contains it."""

    def __init__(self, file, source, macros):
        self.file, self._source, self._macros = file, source, macros
        self.found = {}
        self.constants = set()

    def add(self, change, *places):
        begin = places[0].begin
        if any(low <= begin and places[0].end <= high for low, high in self._macros):
            return
        change = change.encode("latin-1").decode("utf-8", "replace")
        self.found[places] = Mutant(self.file, places, self._source.position(begin), self._source.line(begin), change)

    def span(self, cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def text(self, cursor):
        return self._source.joined(*self.span(cursor))

    def visit(self, cursor, parent=None):
        kind = kind_of(cursor)
        if kind in WITHOUT_CODE:
            return
        if kind in DECLARATIONS and self.is_constant(cursor):
            self.constants.add(self.span(cursor))
            return
        self.apply_rules(kind, cursor, parent)
        for child in self.children_with_code(kind, cursor):
            self.visit(child, cursor)

    def is_constant(self, cursor):
        if kind_of(cursor) != CursorKind.VAR_DECL:
            return False
        head = self._source.text[cursor.extent.start.offset:cursor.location.offset]
        return re.search(r"\b(constexpr|constinit)\b", head) is not None

    def children_with_code(self, kind, cursor):
        children = [child for child in cursor.get_children() if child.extent.end.offset > child.extent.start.offset]
        if kind in LOOPS:  # while (true)
            children = [child for child in children if kind_of(child) != CursorKind.CXX_BOOL_LITERAL_EXPR]
        if kind == CursorKind.CASE_STMT:
            return children[1:]
        if kind == CursorKind.IF_STMT and self.word_after(cursor) == "constexpr":
            return children[1:]
        if kind in DECLARATIONS:
            # The arguments of its type.
            children = [child for child in children if child.extent.start.offset >= cursor.location.offset
                        and not self.is_size(child)]
        if any(kind_of(child) in (CursorKind.TEMPLATE_REF, CursorKind.OVERLOADED_DECL_REF) for child in children):
            children = [child for child in children if not self.is_template_argument(child)]
        if kind == CursorKind.DECL_REF_EXPR:  # only template arguments
            return []
        if kind == CursorKind.MEMBER_REF_EXPR:
            children = [child for child in children if kind_of(child) not in LITERALS]
        return children

    def word_after(self, statement):
        """Returns the word after the first one of a statement."""
        return self._source.word(self._source.from_token(statement.extent.start.offset) + 1)

    def is_size(self, literal):
        """Tells whether a literal is the length of an array or a bit field."""
        before = self._source.word(self._source.from_token(literal.extent.start.offset) - 1)
        return kind_of(literal) in LITERALS and before in ("[", ":")

    def is_template_argument(self, child):
        first = self._source.from_token(child.extent.start.offset)
        after = self._source.from_token(child.extent.end.offset)
        return self._source.word(first - 1) in ("<", ",") and self._source.word(after) in (">", ",", ">>")

    def apply_rules(self, kind, cursor, parent):
        if kind in LITERALS:
            self.literal(kind, cursor, parent)
        elif kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR):
            self.operator(cursor, list(cursor.get_children()))
        elif kind == CursorKind.UNARY_OPERATOR:
            self.unary(cursor)
        elif kind == CursorKind.CALL_EXPR:
            self.call(cursor)
        elif kind == CursorKind.IF_STMT:
            self.condition(cursor, optional=self.has_no_else(cursor))
        elif kind in LOOPS:
            self.condition(cursor)
        elif kind == CursorKind.CONDITIONAL_OPERATOR:
            self.negate(next(cursor.get_children()))
        self.statements(kind, cursor, parent)

    def literal(self, kind, cursor, parent):
        begin, end = self.span(cursor)
        word = self._source.text[begin:end]
        form = "value"
        if parent is not None and kind_of(parent) == CursorKind.UNEXPOSED_EXPR:
            if parent.type.get_canonical().kind in INTEGERS and kind != CursorKind.CXX_BOOL_LITERAL_EXPR:
                form = parent.type.get_canonical().spelling.replace("const ", "")
        elif kind == CursorKind.CHARACTER_LITERAL:
            form = cursor.type.get_canonical().spelling.replace("const ", "")
        if kind == CursorKind.CXX_BOOL_LITERAL_EXPR:
            others = ["false" if word == "true" else "true"]
        elif re.fullmatch(r"0[xXbB]?0*[uUlLzZ]*|[0.]+[fF]?", word) or kind == CursorKind.CHARACTER_LITERAL:
            others = [f"{word} + 1"]
        else:
            others = [f"{word} + 1", f"{word} - 1"]
        for other in others:
            self.add(f"{word} -> {other}", Place(begin, end, form, other))

    def operator(self, cursor, operands):
        if len(operands) != 2:
            return
        left, right = operands
        between = self._source.between(left.extent.end.offset, right.extent.start.offset)
        if len(between) != 1 or between[0][0] not in OTHER_OPERATORS:
            return
        (word, _, _), (begin, end) = between[0], self.span(cursor)
        left_text, right_text = self.text(left), self.text(right)
        before = f"{left_text} {word} {right_text}"
        for other in OTHER_OPERATORS[word]:
            self.add(f"{before} -> {left_text} {other} {right_text}",
                     Place(begin, end, "value", f"({left_text}) {other} ({right_text})"))
        if word in ("&&", "||"):
            for other in (left_text, right_text):
                self.add(f"{before} -> {other}", Place(begin, end, "value", f"static_cast<bool>({other})"))

    def unary(self, cursor):
        begin, end = self.span(cursor)
        operand = next(cursor.get_children(), None)
        if operand is None:
            return
        first, last = self.span(operand)
        words = self._source.between(begin, first) or self._source.between(last, end)
        word, text = words[0][0] if words else "", self.text(operand)
        before = self.text(cursor)
        if word in ("++", "--"):
            other = "--" if word == "++" else "++"
            after = other + text if begin < first else text + other
            self.add(f"{before} -> {after}", Place(begin, end, "value", after))
        elif word == "!":
            self.add(f"{before} -> {text}", Place(begin, end, "value", f"static_cast<bool>({text})"))
        elif word == "-":
            self.add(f"{before} -> {text}", Place(begin, end, "value", text))

    def call(self, cursor):
        operands = [operand for operand in cursor.get_arguments() if operand is not None]
        if cursor.spelling.startswith("operator") and len(operands) == 2:
            if cursor.spelling[len("operator"):] in COMPARISONS:
                self.operator(cursor, operands)
            return
        if SYMMETRIC.fullmatch(cursor.spelling):
            return
        for left, right in zip(operands, operands[1:]):
            self.swap(cursor, left, right)

    def swap(self, call, left, right):
        texts, spans = [self.text(left), self.text(right)], [self.span(left), self.span(right)]
        types = {operand.type.get_canonical().spelling.replace("const ", "") for operand in (left, right)}
        if len(types) != 1 or texts[0] == texts[1] or "" in texts or any(text.startswith("{") for text in texts):
            return
        if left.type.get_canonical().kind == TypeKind.CONSTANTARRAY or spans[0][1] >= spans[1][0]:
            return
        self.add(f"{texts[0]}, {texts[1]} -> {texts[1]}, {texts[0]}",
                 Place(*spans[0], "value", texts[1]), Place(*spans[1], "value", texts[0]),
                 Place(*self.span(call), "call", ""))

    def has_no_else(self, cursor):
        statements = [child for child in cursor.get_children()]
        index = self._source.from_token(statements[-1].extent.start.offset)
        return self._source.word(index - 1) != "else"

    def condition(self, cursor, optional=False):
        """Adds the mutants of the condition between the parentheses of a statement."""
        first = self._source.from_token(cursor.extent.start.offset)
        if kind_of(cursor) == CursorKind.DO_STMT:
            last = list(cursor.get_children())[-1]
            self.negate(last)
            return
        if self.word_after(cursor) == "constexpr":
            return
        low = self._source.tokens[first + 1][1]
        high = self._source.tokens[self._source.closing(first + 1)][0]
        if kind_of(cursor) == CursorKind.FOR_STMT:
            ends = [begin for word, begin, _ in self._source.between(low, high) if word == ";"]
            low, high = ends[0], ends[-1]
        inside = [child for child in cursor.get_children()
                  if low <= child.extent.start.offset and child.extent.end.offset <= high]
        if not inside:
            return
        declared = [child for child in inside if kind_of(child) == CursorKind.VAR_DECL]
        if declared:
            self.negate_declared(cursor, declared[0], high)
            return
        self.negate(inside[-1])
        if optional:
            begin, end = self.span(inside[-1])
            self.add(f"if ({self.text(inside[-1])}) ... -> removed", Place(begin, end, "bool", "false"))

    def negate(self, condition):
        begin, end = self.span(condition)
        text = self.text(condition)
        operands = list(condition.get_children())
        if kind_of(condition) == CursorKind.BINARY_OPERATOR and len(operands) == 2:
            words = self._source.between(operands[0].extent.end.offset, operands[1].extent.start.offset)
            if words and words[0][0] in COMPARISONS:  # its operator is changed instead
                return
        elif kind_of(condition) == CursorKind.UNARY_OPERATOR and text.startswith("!"):
            return
        if end > begin and kind_of(condition) not in (CursorKind.DECL_STMT, *LITERALS):
            self.add(f"{text} -> !({text})", Place(begin, end, "bool", f"!({text})"))

    def negate_declared(self, cursor, variable, end):
        if kind_of(cursor) == CursorKind.IF_STMT:
            name = variable.spelling
            self.add(f"{self.text(variable)} -> its negation", Place(end, end, "declared", name))

    def statements(self, kind, cursor, parent):
        children = list(cursor.get_children())
        if kind == CursorKind.COMPOUND_STMT:
            # The end of a function that has to throw or to return a value is not reached.
            ends = parent is not None and kind_of(parent) in DECLARATIONS and self.throws(children[-1:])
            bodies = children[:-1] if ends else children
        elif kind in (CursorKind.WHILE_STMT, CursorKind.FOR_STMT, CursorKind.CXX_FOR_RANGE_STMT, CursorKind.CASE_STMT,
                      CursorKind.DEFAULT_STMT):
            bodies = children[-1:]
        elif kind == CursorKind.IF_STMT:
            bodies = children[-1:] if self.has_no_else(cursor) else children[-2:]
        else:
            return
        for body in bodies:
            self.remove(body)

    def throws(self, statements):
        return any(self._source.word(self._source.from_token(statement.extent.start.offset)) == "throw"
                   for statement in statements)

    def remove(self, statement):
        kind = kind_of(statement)
        empty_return = kind == CursorKind.RETURN_STMT and not list(statement.get_children())
        if kind not in STATEMENTS and not empty_return:
            return
        begin, end = self.span(statement)
        semicolon = self._source.from_token(end)
        if self._source.word(semicolon) != ";" or self._source.text[begin:end] == "":
            return
        self.add(f"{self.text(statement)}; -> removed",
                 Place(begin, self._source.tokens[semicolon][1], "statement", ""))


def macros_of(unit, files):
    """Returns the extents of the macros used in each of `files`."""
    found = {name: [] for name in files}
    for cursor in unit.cursor.get_children():
        if kind_of(cursor) == CursorKind.MACRO_INSTANTIATION and cursor.location.file:
            spans = found.get(cursor.location.file.name)
            if spans is not None:
                spans.append((cursor.extent.start.offset, cursor.extent.end.offset))
    return found


def find(unit, sources):
    """Returns the mutants that a translation unit shows in `sources`, and the places of constants left out.

    `sources` maps the absolute name of each file to its relative name and its text.
    """
    macros, mutants, constants = macros_of(unit, sources), {}, set()
    finders = {name: Finder(file, source, macros[name]) for name, (file, source) in sources.items()}
    for cursor in unit.cursor.get_children():
        place = cursor.location.file
        if place is not None and place.name in finders and kind_of(cursor) not in (
                CursorKind.MACRO_INSTANTIATION, CursorKind.MACRO_DEFINITION, CursorKind.INCLUSION_DIRECTIVE):
            finders[place.name].visit(cursor)
    for finder in finders.values():
        mutants.update(((mutant.file, places), mutant) for places, mutant in finder.found.items())
        constants.update((finder.file, *span) for span in finder.constants)
    return mutants, constants


PARSE_OPTIONS = TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD
