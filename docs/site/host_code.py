"""The host's language on the site: the colours of fenced code and of declarations, and programs as pages of their own."""

from __future__ import annotations

import re
from pathlib import Path

from docutils import nodes
from pygments.lexer import RegexLexer, bygroups, words
from pygments.lexers.special import TextLexer
from pygments.token import Comment, Keyword, Name, Number, Operator, Punctuation, String, Text
from sphinx.application import Sphinx
from sphinx.parsers import Parser

# Words that mean something by themselves. A test of the house compares them with the simulator's.
RESERVED = (
    "and", "as", "byref", "byval", "case", "catch", "class", "const", "continue", "dim", "do", "downto", "each", "else",
    "elseif", "end", "event", "exit", "false", "finally", "for", "function", "if", "in", "inherits", "is", "isa", "loop",
    "mod", "module", "new", "next", "nil", "not", "or", "raise", "redim", "return", "select", "self", "shared", "step",
    "sub", "super", "then", "to", "true", "try", "until", "wend", "while", "xor",
)  # fmt: skip
_OPERATORS = ("and", "is", "isa", "mod", "not", "or", "xor")
_CONSTANTS = ("false", "nil", "self", "super", "true")
_OTHERS = tuple(word for word in RESERVED if word not in _OPERATORS + _CONSTANTS)


class HostLexer(RegexLexer):
    """Programs."""

    name = "Host program"
    aliases = ["basic"]
    flags = re.IGNORECASE
    tokens = {
        "root": [
            (r"\s+", Text),
            (r"('|//).*", Comment.Single),
            (r'"([^"\n]|"")*"', String.Double),
            (r"\b(as)(\s+)(new\b)", bygroups(Keyword, Text, Keyword)),
            (r"\b(as|inherits|isa|new)(\s+)([a-z_]\w*)", bygroups(Keyword, Text, Name.Class)),
            (r"\b(sub|function|event|class|module)(\s+)([a-z_]\w*)", bygroups(Keyword, Text, Name.Function)),
            (r"(\.)([a-z_]\w*)", bygroups(Operator, Name.Attribute)),
            (words(_OPERATORS, suffix=r"\b", prefix=r"\b"), Operator.Word),
            (words(_CONSTANTS, suffix=r"\b", prefix=r"\b"), Keyword.Constant),
            (words(_OTHERS, suffix=r"\b", prefix=r"\b"), Keyword),
            (r"&[hbo][0-9a-f]+", Number),
            (r"\d+(\.\d+)?(e[+-]?\d+)?", Number),
            (r"[a-z_]\w*", Name),
            (r"<>|<=|>=|[-+*/\\^=<>]", Operator),
            (r"[(),.:]", Punctuation),
        ]
    }


class DeclarationLexer(RegexLexer):
    """What the reference shows of a member: its name, its parameters, its type."""

    name = "Host declaration"
    aliases = ["declaration"]
    flags = re.IGNORECASE | re.MULTILINE
    tokens = {
        "root": [
            (r"^(event )?(\w+)", bygroups(Keyword, Name.Function)),
            (r"\b(as)(\s+)(\w+)", bygroups(Keyword, Text, Name.Class)),
            (words(("byref", "assigns"), suffix=r"\b", prefix=r"\b"), Keyword),
            (r"\s+", Text),
            (r'"[^"\n]*"', String.Double),
            (r"-?\d+", Number),
            (r"\w+", Name),
            (r"[(),=]", Punctuation),
        ]
    }


class HostProgram(Parser):
    """A program as a page: the comment that it opens with, then all of it."""

    supported = ("host program",)

    def parse(self, inputstring: str, document: nodes.document) -> None:
        title = Path(document["source"]).name
        about = " ".join(re.findall(r"\A(?:'.*\n)*", inputstring)[0].replace("'", "").split())
        code = nodes.literal_block(inputstring, inputstring, language="basic")
        name = nodes.make_id(title)
        document += nodes.section("", nodes.title(title, title), nodes.paragraph(about, about), code, ids=[name], names=[title])


def setup(app: Sphinx) -> dict[str, bool]:
    app.add_lexer("basic", HostLexer)
    app.add_lexer("declaration", DeclarationLexer)
    app.add_lexer("output", TextLexer)
    app.add_source_parser(HostProgram)
    return {"parallel_read_safe": True}
