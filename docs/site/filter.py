#!/usr/bin/env python3
"""Translates one source of the site into what Doxygen understands, on standard output.

usage: filter.py FILE          (Doxygen's FILTER_PATTERNS)

Markdown           links between files, sections with the anchors that other viewers give them, pictures
proto              messages as structs, services as classes
public headers     links from each function to its RPCs and their messages
Python             public members, with comments instead of docstrings
manual pages       HTML made by mandoc

The first folder above docs/ is the root of the tree.
"""

import ast
import inspect
import os
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SCHEMAS = ROOT / "proto" / "ostrevan"
HEADERS = ("NetworkgRPC.h", "NetworkgRPC_c.h", "DantegRPC.h", "NetworkManagerClient.h", "DAPIClient.h")
RPC = re.compile(r"rpc (\w+)\(([\w.]+)\) returns \(([\w.]+)\);")


# --- Markdown --------------------------------------------------------------------


def page_id(path: Path) -> str:
    """The page of a Markdown file; README.md is the main page."""
    return "index" if path.name == "README.md" else f"page_{path.stem.lower()}"


def slug(heading: str) -> str:
    """The anchor that Git hosts give a heading."""
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def is_example(path: Path) -> bool:
    return path.suffix in (".cc", ".c", ".py", ".sh") and "examples" in path.parts


def picture(path: Path, caption: str) -> str:
    """A drawing of Graphviz as part of the page, so that it has the page's width and colours."""
    drawn = subprocess.run(["dot", "-Tsvg", path], check=True, stdout=subprocess.PIPE, text=True).stdout
    drawn = re.sub(r' id="\w+"|<!--.*?-->\n?', "", drawn[drawn.index("<svg") :])
    caption = f"<figcaption>{caption[0].upper()}{caption[1:]}</figcaption>"
    return f'\\htmlonly[block]\n<figure class="picture">{drawn}{caption}</figure>\n\\endhtmlonly'


def link(text: str, target: str, page: Path) -> str:
    """A link to what is part of the site; otherwise only its text."""
    if re.match(r"\w+:", target):
        return f"[{text}]({target})"
    text = text.replace("`", "")
    file, _, anchor = target.partition("#")
    path = Path(os.path.normpath(page.parent / file)) if file else page
    if path.suffix == ".md":
        return f"[{text}](@ref {page_id(path)}{'_' + anchor if anchor else ''})"
    if path.suffix == ".dot":
        return picture(path, text.partition(": ")[2])
    if path.suffix == ".proto":
        return f"[{text}](@ref ostrevan::{path.stem})"
    if is_example(path) or path.name in HEADERS:
        return f"[{text}](@ref {path.name})"
    return text if " " in text else f"`{text}`"


def heading(marks: str, text: str, page: Path) -> str:
    if marks == "#":
        # Doxygen itself gives the main page its name.
        return f"# {text}" + ("" if page_id(page) == "index" else f" {{#{page_id(page)}}}")
    return f"{marks} {text} {{#{page_id(page)}_{slug(text)}}}"


def markdown(path: Path) -> str:
    result = []
    # Code blocks stay as they are.
    for part in re.split(r"(^```.*?^```$)", path.read_text(), flags=re.M | re.S):
        if not part.startswith("```"):
            part = re.sub(
                r"(?<!!)\[((?:[^\]\[]|\[[^\]]*\])+)\]\(([^)\s]+)\)",
                lambda found: link(found[1], found[2], path),
                part,
            )
            part = re.sub(r"^(#+) (.*)$", lambda found: heading(found[1], found[2], path), part, flags=re.M)
        result.append(part)
    return "".join(result)


# --- Schemas ---------------------------------------------------------------------


def cxx(name: str) -> str:
    return name.replace(".", "::")


def field(line: str) -> str:
    """A field of a message or a value of an enumeration, with its number and comment."""
    found = re.match(r"(\s*)(repeated )?([\w.]+ )?(\w+) = (\d+);\s*(?://\s*(.*))?$", line)
    if not found:
        return line
    indent, repeated, type_, name, number, comment = found.groups()
    note = f"{comment[0].upper()}{comment[1:]}. " if comment else ""
    if not type_:
        return f"{indent}{name} = {number},  ///< {note}Value {number}."
    type_ = cxx(type_.strip())
    return f"{indent}{f'repeated<{type_}>' if repeated else type_} {name};  ///< {note}Field {number}."


def rpc(found: "re.Match[str]", documented: bool) -> str:
    name, request, reply = found[1], cxx(found[2]), cxx(found[3])
    lines = [] if documented else [f"/// The RPC {name}."]
    lines += ["///", "/// @param request  The request.", "/// @return The reply."]
    return "\n  ".join([*lines, f"{reply} {name}({request} request);"])


def proto(path: Path) -> str:
    result = []  # the first comment becomes that of the namespace
    before = ""
    oneof = False
    for line in path.read_text().splitlines():
        found = RPC.search(line)
        if re.match(r"(syntax|import|option) ", line):
            line = ""
        elif line.startswith("package "):
            line = f"namespace {cxx(line[8:-1])} {{"
        elif re.match(r"\s*//( |$)", line):
            line = line.replace("//", "///", 1)
        elif re.match(r"(message|enum|service) ", line):
            kind, name = line.split()[:2]
            opening = {"message": "struct", "enum": "enum", "service": "class"}[kind]
            comment = "" if before.lstrip().startswith("///") else f"/// The {kind} {name}.\n"
            line = f"{comment}{opening} {name} {{" + ("};" if line.endswith("{}") else "")
            line += " public:" if kind == "service" else ""
        elif re.match(r"\s+oneof ", line) or (oneof and line.strip() == "}"):
            oneof = line.strip() != "}"
            line = ""
        elif line == "}":
            line = "};"
        elif found:
            line = "  " + rpc(found, before.lstrip().startswith("///"))
        else:
            line = field(line)
        result.append(line)
        before = line
    return "\n".join([*result, "}"])


# --- Headers ---------------------------------------------------------------------


def rpcs() -> "dict[str, str]":
    """What to write instead of the name of each RPC: links to it and to its messages."""
    links = {}
    for schema in ("networkmanager", "grpcdapi"):
        text = (SCHEMAS / f"{schema}.proto").read_text()
        service = f"ostrevan::{schema}::" + re.search(r"service (\w+)", text)[1]
        for name, *messages in RPC.findall(text):
            full = [cxx(m) if "." in m else f"ostrevan::{schema}::{m}" for m in messages]
            request, reply = (f'\\ref {m} "{m.rpartition("::")[2]}"' for m in full)
            links[name] = f'\\ref {service}::{name} "{name}" ({request}, {reply})'
    return links


def header(path: Path) -> str:
    links = rpcs()

    def linked(found: "re.Match[str]") -> str:
        return re.sub(r"\b\w+\b", lambda word: links.get(word[0], word[0]), found[0])

    return re.sub(r"(?<=[* /])(RPCs?: .*?(?=Blocks)|Makes no RPC, except \w+)", linked, path.read_text(), flags=re.S)


# --- Python ----------------------------------------------------------------------


def comment(doc: str, indent: str, *commands: str) -> str:
    """A docstring with its sections as commands of Doxygen."""
    command = ""
    lines = list(commands)
    for line in inspect.cleandoc(doc).splitlines():
        section = re.match(r"(Args|Raises|Attributes):$", line)
        entry = re.match(r"    (\w+): (.*)", line)
        if section:
            command = {"Args": "@param", "Raises": "@exception", "Attributes": "-"}[section[1]]
        elif command and entry:
            lines.append(f"{command} {entry[1]}  {entry[2]}")
        else:
            lines.append(line)
    return "".join(f"{indent}{'#' if number else '##'} {line}\n" for number, line in enumerate(lines))


def members(scope: ast.AST, indent: str) -> str:
    """The public members of a module or class, with comments instead of docstrings."""
    result = ""
    body = getattr(scope, "body", [])
    for member, following in zip(body, [*body[1:], None]):
        doc = ""
        if isinstance(member, (ast.ClassDef, ast.FunctionDef)) and not member.name.startswith("_"):
            doc = ast.get_docstring(member) or ""
        if isinstance(member, ast.ClassDef) and doc:
            bases = ", ".join(map(ast.unparse, member.bases))
            result += f"{comment(doc, indent)}{indent}class {member.name}({bases}):\n"
            result += members(member, indent + "    ") + f"{indent}    pass\n"
        elif isinstance(member, ast.FunctionDef) and doc:
            returned = ast.unparse(member.returns)
            text = doc.splitlines()[0].removeprefix("Return ").split(". ")[0].rstrip(".")
            doc += f"\n\n@return {'None' if returned == 'None' else text[0].upper() + text[1:]}."
            result += f"{comment(doc, indent)}{indent}def {member.name}({ast.unparse(member.args)}) -> {returned}:\n"
            result += f"{indent}    pass\n"
        elif isinstance(member, ast.AnnAssign) and isinstance(following, ast.Expr):
            result += comment(ast.literal_eval(following.value), indent)
            result += f"{indent}{ast.unparse(member.target)}: {ast.unparse(member.annotation)} = ...\n"
    return result


def python(path: Path) -> str:
    module = ast.parse(path.read_text())
    name = "networkgrpc" + ("" if path.stem == "__init__" else f".{path.stem}")
    return comment(ast.get_docstring(module) or "", "", f"@package {name}") + "\n" + members(module, "")


# --- Manual pages ----------------------------------------------------------------


def manual(path: Path) -> str:
    name, section = path.stem, path.suffix[1:]
    html = subprocess.run(
        ["mandoc", "-T", "html", "-O", "fragment", path], check=True, stdout=subprocess.PIPE, text=True
    ).stdout
    html = re.sub(r'<table class="(head|foot)">.*?</table>', "", html, flags=re.S)
    # Of the other pages only this project's are here.
    html = re.sub(r"<a class=\"(?:Xr|In)\">(.*?)</a>", r"\1", html)
    pages = r"\b((?:lib)?networkgrpc[\w-]*)(</b>)?\(([137])\)"
    html = re.sub(pages, r'<a href="man_\1_\3.html">\1(\3)</a>\2', html, flags=re.I)
    return f"# {name}({section}) {{#man_{name}_{section}}}\n\n\\htmlonly[block]\n{html}\n\\endhtmlonly\n"


def main() -> None:
    path = Path(os.path.abspath(sys.argv[1]))
    translate = {".md": markdown, ".proto": proto, ".h": header, ".py": python, ".pyi": python}.get(path.suffix, manual)
    print(translate(path))


main()
