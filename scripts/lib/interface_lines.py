"""Turn the XML of abidw, on standard input, into sorted lines that can be read and compared.

    function SYMBOL: RESULT (PARAMETERS) static
    variable SYMBOL: BYTES bytes
    type NAME: BYTES bytes
    type NAME: at BYTE: TYPE FIELD
    type NAME: static: TYPE FIELD
    type NAME: at BYTE: base class TYPE
    type NAME: virtual function NUMBER: SYMBOL
    enumerator TYPE::NAME: VALUE

The result is left out if it is void or of a type that abidw leaves out, the parameters
if the symbol contains them. The members of an anonymous union are listed as fields of the type that
contains it. Types of the standard library have no lines of their own.
"""

import re
import sys
import xml.etree.ElementTree as ElementTree

STRING = "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >"

root = ElementTree.parse(sys.stdin).getroot()
by_id = {node.get("id"): node for node in root.iter() if node.get("id")}
lines = set()
declarations = {}  # symbol: its line, without the kind and the symbol
scopes = {}  # id of a type: the names of what it is in


def find_scopes(node, scope):
    for child in node:
        if child.get("id"):
            scopes[child.get("id")] = scope
        named = child.tag in ("namespace-decl", "class-decl", "union-decl")
        find_scopes(child, scope + [child.get("name", "")] if named else scope)


def type_name(identity):
    node = by_id[identity]
    inner = node.get("type-id")
    if node.tag == "typedef-decl":
        return type_name(inner)
    if node.tag == "pointer-type-def":
        return type_name(inner) + "*"
    if node.tag == "reference-type-def":
        return type_name(inner) + ("&" if node.get("kind") == "lvalue" else "&&")
    if node.tag == "qualified-type-def":
        words = [word for word in ("const", "volatile") if node.get(word) == "yes"]
        return " ".join([type_name(inner), *words])
    if node.tag == "array-type-def":
        return type_name(inner) + "".join(f"[{part.get('length')}]" for part in node)
    if node.tag == "function-type":
        parameters = [type_name(part.get("type-id")) for part in node.iter("parameter")]
        return f"{type_name(node.find('return').get('type-id'))}({', '.join(parameters)})"
    name = "::".join([*scopes[identity], node.get("name")])
    return "std::string" if name == STRING else name


def in_bytes(bits):
    return f"{int(bits) / 8:.15g}"


def add_function(function, static):
    symbol = function.get("elf-symbol-id")
    if not symbol:
        return
    words = [type_name(function.find("return").get("type-id"))]
    if words == ["void"]:
        words = []
    if not symbol.startswith("_Z"):
        names = [type_name(parameter.get("type-id")) for parameter in function.iter("parameter")]
        words.append(f"({', '.join(names)})")
    if static:
        words.append("static")
    declarations[symbol] = " ".join(words)


def add_fields(name, node, start):
    for member in node.findall("data-member"):
        offset = start + int(member.get("layout-offset-in-bits", 0))
        field = member.find("var-decl")
        if field.get("name"):
            field_type = type_name(field.get("type-id"))
            place = "static" if member.get("static") == "yes" else f"at {in_bytes(offset)}"
            lines.add(f"type {name}: {place}: {field_type} {field.get('name')}")
        else:  # the members of an anonymous union belong to the type that contains it
            add_fields(name, by_id[field.get("type-id")], offset)


def add_type(node):
    name = type_name(node.get("id"))
    if name.startswith("std::") or node.get("is-anonymous") == "yes":
        return
    if node.tag == "enum-decl":
        for enumerator in node.findall("enumerator"):
            lines.add(f"enumerator {name}::{enumerator.get('name')}: {enumerator.get('value')}")
        lines.add(f"type {name}: {type_name(node.find('underlying-type').get('type-id'))}")
        return
    lines.add(f"type {name}: {in_bytes(node.get('size-in-bits', 0))} bytes")
    for base in node.findall("base-class"):
        offset = in_bytes(base.get("layout-offset-in-bits"))
        lines.add(f"type {name}: at {offset}: base class {type_name(base.get('type-id'))}")
    add_fields(name, node, 0)
    for member in node.findall("member-function"):
        add_function(member.find("function-decl"), member.get("static") == "yes")
        if member.get("vtable-offset"):
            symbol = member.find("function-decl").get("mangled-name")
            lines.add(f"type {name}: virtual function {member.get('vtable-offset')}: {symbol}")


find_scopes(root, [])
for node in root.iter():
    if node.tag in ("class-decl", "union-decl", "enum-decl") and node.get("is-declaration-only") != "yes":
        add_type(node)
    elif node.tag in ("abi-instr", "namespace-decl"):
        for function in node.findall("function-decl"):
            add_function(function, False)
for symbol in root.iterfind("elf-function-symbols/elf-symbol"):
    lines.add(f"function {symbol.get('name')}: {declarations.get(symbol.get('name'), '')}".rstrip())
for symbol in root.iterfind("elf-variable-symbols/elf-symbol"):
    if not re.match("_ZT[IS]N8ostrevan", symbol.get("name")):
        lines.add(f"variable {symbol.get('name')}: {symbol.get('size')} bytes")


def by_number(line):
    return [int(part) if part.isdigit() else part for part in re.split(r"(\d+)", line)]


print(*sorted(lines, key=by_number), sep="\n")
