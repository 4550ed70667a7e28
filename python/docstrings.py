"""Writes the docstrings of a type stub as C++, so that help() and editors show the same.

usage: docstrings.py STUB.pyi OUTPUT.cc
"""

import ast
import inspect
import json
import sys
from pathlib import Path
from typing import Dict


def docstrings(scope: ast.AST, prefix: str = "") -> Dict[str, str]:
    """Docstrings by name: '' the module's, 'Record', 'Record.member', 'function'."""
    found = {}
    body = getattr(scope, "body", [])
    for member, following in zip(body, [*body[1:], None]):
        if isinstance(member, (ast.ClassDef, ast.FunctionDef)):
            doc = ast.get_docstring(member)
            if doc:
                found[prefix + member.name] = doc
        if isinstance(member, ast.ClassDef):
            found.update(docstrings(member, member.name + "."))
        if isinstance(member, ast.AnnAssign) and isinstance(following, ast.Expr):
            # A string below a member is its docstring by convention.
            found[prefix + ast.unparse(member.target)] = inspect.cleandoc(ast.literal_eval(following.value))
    return found


module = ast.parse(Path(sys.argv[1]).read_text(encoding="utf-8"))
entries = {"": ast.get_docstring(module) or "", **docstrings(module)}
rows = "".join(f"    {{{json.dumps(name)}, {json.dumps(doc)}}},\n" for name, doc in entries.items())
Path(sys.argv[2]).write_text(
    '#include "python/call.h"\n\n#include <map>\n\nconst char* python::Doc(const std::string& name) {\n'
    f"  static const std::map<std::string, const char*> docs = {{\n{rows}  }};\n"
    "  return docs.at(name);\n}\n",
    encoding="utf-8",
)
