"""Generates small faults in C++ sources: mutants.

clang parses the sources, so that a mutant is nearly always one that compiles.
"""

import json
import os
import re
import shlex
import subprocess

from clang.cindex import CursorKind as Kind
from clang.cindex import Index, TypeKind, conf

CLASSES = (Kind.CLASS_DECL, Kind.CLASS_TEMPLATE, Kind.STRUCT_DECL)
FUNCTIONS = (
    Kind.CONSTRUCTOR,
    Kind.CXX_METHOD,
    Kind.DESTRUCTOR,
    Kind.FUNCTION_DECL,
    Kind.FUNCTION_TEMPLATE,
)
CONDITIONAL = (Kind.CONDITIONAL_OPERATOR, Kind.IF_STMT, Kind.WHILE_STMT)
WITH_BODY = (Kind.CXX_FOR_RANGE_STMT, Kind.FOR_STMT, Kind.IF_STMT, Kind.WHILE_STMT)
STATEMENTS = (  # which are dropped
    Kind.BINARY_OPERATOR,
    Kind.BREAK_STMT,
    Kind.CALL_EXPR,
    Kind.COMPOUND_ASSIGNMENT_OPERATOR,
    Kind.CONTINUE_STMT,
    Kind.UNARY_OPERATOR,
)
OPPOSITES = "== != < <= > >= + - * / += -=".split()
OPPOSITE = {one: OPPOSITES[at ^ 1] for at, one in enumerate(OPPOSITES)}


class Source:
    """A file, and the replacements found for it."""

    def __init__(self, root, name):
        self.name = name
        with open(os.path.join(root, name), "rb") as file:
            self.content = file.read()
        self.found = {}  # (begin, end, replacement): function

    def text(self, begin, end):
        return self.content[begin:end].decode()

    def mutants(self):
        """Pairs of a name, which stays if other lines of the file change, and the content."""
        seen = {}
        for (begin, end, new), function in sorted(self.found.items()):
            before = self.text(self.content.rfind(b"\n", 0, begin) + 1, begin)
            after = self.text(end, self.content.find(b"\n", end))
            lines = [f"{before}{middle}{after}" for middle in (self.text(begin, end), new)]
            lines = [" ".join(line.split()) for line in lines]
            # Of long texts, what is around the difference.
            start = max(0, len(os.path.commonprefix(lines)) - 50)
            lines = [("..." if start else "") + line[start : start + 100] for line in lines]
            name = f"{self.name}: {function}: {' => '.join(lines)}"
            seen[name] = seen.get(name, 0) + 1
            number = f" #{seen[name]}" if seen[name] > 1 else ""
            yield name + number, self.content[:begin] + new.encode() + self.content[end:]


def span(cursor):
    return cursor.extent.start.offset, cursor.extent.end.offset


def inner(cursor):
    """The expression without implicit conversions and parentheses."""
    while cursor.kind in (Kind.PAREN_EXPR, Kind.UNEXPOSED_EXPR):
        children = list(cursor.get_children())
        if len(children) != 1:
            break
        cursor = children[0]
    return cursor


def type_of(cursor):
    return cursor.type.get_canonical().spelling.replace("const ", "")


def sibling(cursor):
    """The next member of the same class or enumeration that could stand in its place."""
    # The template, of an instance of one.
    own = conf.lib.clang_getSpecializedCursorTemplate(cursor) or cursor
    if own.location.file is None or own.location.file.name.startswith("/usr/"):
        return None
    # protobuf's own names are no fields, and no values.
    foreign = "release_|_|operator|GetCachedSize$|IsInitialized$|.*_SENTINEL_"
    names = [
        other.spelling
        for other in own.semantic_parent.get_children()
        if other.kind == own.kind
        and other.type.get_canonical().spelling == own.type.get_canonical().spelling
        and other.access_specifier == own.access_specifier
        and not re.match(foreign, other.spelling)
    ]
    if own.spelling not in names or names[0] == names[-1]:
        return None
    return names[(names.index(own.spelling) + 1) % len(names)]


class Visitor:
    """Visits a translation unit, and adds what it finds to the sources in it."""

    def __init__(self, sources):
        self.sources = sources  # path: Source
        self.scope = []
        self.conditions = set()  # their spans

    def text(self, cursor):
        return self.source.text(*span(cursor))

    def replace(self, begin, end, new):
        function = "::".join(self.scope) or "constants"
        if self.source.text(begin, end) != new:
            self.source.found.setdefault((begin, end, new), function)

    def visit_unit(self, unit):
        for cursor in unit.cursor.get_children():
            file = cursor.location.file
            if file and (source := self.sources.get(file.name)):
                self.source = source
                self.visit(cursor, None)

    def visit(self, cursor, parent):
        in_header = self.source.name.endswith(".h") and not self.scope
        if cursor.kind in (Kind.FIELD_DECL, Kind.STATIC_ASSERT) or (
            cursor.kind == Kind.VAR_DECL and in_header
        ):
            return  # Programs that are compiled with a header have its values.
        named = cursor.kind in FUNCTIONS + CLASSES
        if named:
            owner = cursor.semantic_parent
            outside = cursor.kind in FUNCTIONS and owner.kind in CLASSES and not self.scope
            self.scope += [f"{owner.spelling}::{cursor.spelling}" if outside else cursor.spelling]
        children = list(cursor.get_children())
        if parent is not None:
            self.statement(cursor, parent)
            self.expression(cursor, children)
        for child in children:
            self.visit(child, cursor)
        if named:
            self.scope.pop()

    def statement(self, cursor, parent):
        """Drops a call or an assignment, and a return that depends on a condition."""
        begin, end = span(cursor)
        kind = inner(cursor).kind
        branch = (
            parent.kind in WITH_BODY
            and re.match(rb"\s*;", self.source.content[end:])
            and re.search(rb"(\)|else)\s*$", self.source.content[:begin])
        )
        early = kind == Kind.RETURN_STMT and parent.kind == Kind.IF_STMT
        if branch and early or (branch or parent.kind == Kind.COMPOUND_STMT) and kind in STATEMENTS:
            self.replace(begin, end, "")

    def expression(self, cursor, children):
        begin, end = span(cursor)
        text = self.text(cursor)
        kind = cursor.kind
        if kind in CONDITIONAL:
            self.condition(kind, *children)
        elif kind == Kind.BINARY_OPERATOR or cursor.spelling.startswith("operator"):
            self.operator(cursor, children)
        elif kind == Kind.UNARY_OPERATOR:
            if re.match(r"!|-(?!-)", text) and (begin, end) not in self.conditions:
                self.replace(begin, end, text[1:])
            elif "++" in text:
                self.replace(begin, end, text.replace("++", "--"))
        elif kind == Kind.CALL_EXPR:
            self.arguments(list(cursor.get_arguments()))
        elif kind == Kind.RETURN_STMT and children:
            self.result(inner(children[0]))
        elif kind in (Kind.DECL_REF_EXPR, Kind.MEMBER_REF_EXPR) and cursor.referenced:
            self.member(cursor, text, end)
        else:
            self.literal(kind, begin, end, text)

    def condition(self, kind, condition, *branches):
        begin, end = span(condition)
        if condition.kind in (Kind.DECL_STMT, Kind.VAR_DECL):
            self.replace(end, end, "; false")
            return
        # True and false: what notices both notices the opposite.
        self.conditions.add(span(inner(condition)))
        if branches[0].kind != Kind.RETURN_STMT:
            self.replace(begin, end, "true")
            # Without its statement, a condition does nothing, too.
            if kind != Kind.IF_STMT or len(branches) > 1 or branches[0].kind == Kind.COMPOUND_STMT:
                self.replace(begin, end, "false")

    def operator(self, cursor, children):
        if len(children) < 2:
            return
        begin, end = span(children[0])[1], span(children[-1])[0]
        between = self.source.text(begin, max(begin, end))
        found = re.fullmatch(r"\)*\s*(\S+)\s*\(*", between)
        if not found:
            return
        if found[1] in ("&&", "||"):
            self.replace(*span(cursor), self.text(children[0]))
            self.replace(*span(cursor), self.text(children[-1]))
        elif found[1] in ("==", "!=") and span(cursor) in self.conditions:
            return
        elif found[1] in OPPOSITE:
            self.replace(begin + found.start(1), begin + found.end(1), OPPOSITE[found[1]])

    def arguments(self, arguments):
        """Swaps neighbours of one type, but for the two ends of a range."""
        for one, other in zip(arguments, arguments[1:]):
            (begin, middle), (next_begin, end) = span(one), span(other)
            if middle >= next_begin or self.text(one).endswith("begin()"):
                continue
            if type_of(inner(one)) == type_of(inner(other)):
                between = self.source.text(middle, next_begin)
                self.replace(begin, end, self.text(other) + between + self.text(one))

    def result(self, value):
        text = self.text(value)
        if "\n" in text:
            return  # Its body returns, too.
        if value.kind in (Kind.CALL_EXPR, Kind.DECL_REF_EXPR, Kind.MEMBER_REF_EXPR):
            boolean = value.type.get_canonical().kind == TypeKind.BOOL
            self.replace(*span(value), f"!({text})" if boolean else "{}")

    def member(self, cursor, text, end):
        name = cursor.spelling
        if re.match(rb"\s*=[^=]", self.source.content[end:]) or re.match("set_|add_", name):
            return  # What is assigned is replaced, and dropped.
        kinds = (Kind.CXX_METHOD, Kind.ENUM_CONSTANT_DECL, Kind.FIELD_DECL)
        if cursor.referenced.kind in kinds and text.endswith(name):
            if other := sibling(cursor.referenced):
                self.replace(end - len(name), end, other)

    def literal(self, kind, begin, end, text):
        if kind == Kind.INTEGER_LITERAL and (number := re.match(r"\d+", text)):
            # 1 becomes 0, as sizes less one, modes and flags; large numbers change by much.
            value = int(number[0])
            other = 2 * value if value > 9 else 0 if value == 1 else value + 1
            self.replace(begin, begin + number.end(), str(other))
        elif kind == Kind.CXX_BOOL_LITERAL_EXPR and text in ("true", "false"):
            self.replace(begin, end, "false" if text == "true" else "true")
        elif kind == Kind.STRING_LITERAL and text.startswith('"'):
            self.replace(begin, begin + 1, '"x')
        elif kind == Kind.CHARACTER_LITERAL and text.startswith("'"):
            self.replace(begin, end, "'b'" if text != "'b'" else "'c'")


def generate(root, build, tree, wanted):
    """The mutants of the files whose names match `wanted`: name: (file, content).

    The files are compiled as in the folder `build`, for a copy of the tree in `tree`.
    """
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        commands = {os.path.relpath(entry["file"], tree): entry["command"] for entry in json.load(file)}
    names = [name for name in sorted(commands) if re.match(wanted, name)]
    for folder in sorted({os.path.dirname(name) for name in names}):
        headers = [os.path.join(folder, name) for name in os.listdir(folder) if name.endswith(".h")]
        names += [name for name in sorted(headers) if re.match(wanted, name)]
    # libclang comes without the compiler's own headers, such as stddef.h.
    own = subprocess.check_output(["c++", "-print-file-name=include"], text=True).strip()
    sources = {os.path.join(tree, name): Source(root, name) for name in names}
    for path, source in sources.items():
        if source.name in commands:
            words = shlex.split(commands[source.name])
            flags = [word for word in words if word.startswith(("-D", "-I"))]
            flags += ["-std=c++17", "-nobuiltininc"]
            for folder in (own, os.path.join(build, "generated")):
                flags += ["-isystem", folder]
            unit = Index.create().parse(path, flags)
            errors = [str(found) for found in unit.diagnostics if found.severity >= 3]
            if errors:
                raise SystemExit(f"mutate: {errors[0]}")
            Visitor(sources).visit_unit(unit)
    return {
        name: (source.name, content)
        for source in sources.values()
        for name, content in source.mutants()
    }
