"""Fails for every public declaration of the headers that has no comment attached to it.

usage: comments.py HEADER... -- FLAG...

Editors show the comment that clang attaches to a declaration, so clang is asked.
"""

import sys

from clang.cindex import AccessSpecifier, CursorKind, Diagnostic, Index, TranslationUnit

TYPES = (CursorKind.CLASS_DECL, CursorKind.STRUCT_DECL)
DOCUMENTED = TYPES + (
    CursorKind.CONSTRUCTOR,
    CursorKind.CXX_METHOD,
    CursorKind.FIELD_DECL,
    CursorKind.FUNCTION_DECL,
)
C_LINKAGE = (CursorKind.LINKAGE_SPEC, CursorKind.UNEXPOSED_DECL)


def declarations(scope, header):
    """The public declarations that stand in the header itself."""
    for cursor in scope.get_children():
        if not cursor.location.file or cursor.location.file.name != header:
            continue
        if cursor.access_specifier in (AccessSpecifier.PRIVATE, AccessSpecifier.PROTECTED):
            continue
        if cursor.kind in DOCUMENTED:
            yield cursor
        if cursor.kind in TYPES + C_LINKAGE:
            yield from declarations(cursor, header)


def name(cursor):
    owner = cursor.semantic_parent
    return f"{owner.spelling}::{cursor.spelling}" if owner.kind in TYPES else cursor.spelling


def check(header, flags):
    unit = Index.create().parse(header, flags, options=TranslationUnit.PARSE_SKIP_FUNCTION_BODIES)
    wrong = [str(found) for found in unit.diagnostics if found.severity >= Diagnostic.Error]
    public = list(declarations(unit.cursor, header))
    if not public:
        wrong.append(f"{header}: nothing public found")
    for cursor in public:
        if not cursor.raw_comment:
            wrong.append(f"{header}:{cursor.location.line}: no comment: {name(cursor)}")
    print(f"{header}: {len(public)} public declarations")
    return wrong


def main(arguments):
    split = arguments.index("--")
    wrong = [line for header in arguments[:split] for line in check(header, arguments[split + 1 :])]
    print(*wrong, sep="\n", end="\n" if wrong else "")
    return bool(wrong)


sys.exit(main(sys.argv[1:]))
