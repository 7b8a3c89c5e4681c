"""The site's contents come from the pages themselves: a page that lists others in tables (docs/README.md, the guides, the
examples) becomes their parent in Sphinx's tree of contents. So nothing on a page has to be written for Sphinx."""

from __future__ import annotations

import posixpath
import re
from pathlib import Path

from sphinx.application import Sphinx

HOME = "docs/README"
PROGRAMMERS = ["You write host programs"]
EVERYBODY_ELSE = ["You work on the plugin", "You build or test it"]

_LISTS_OTHERS = {HOME, "docs/guides/README", "examples/README"}
_ROW = re.compile(r"^\| \[[^\]]*\]\(([^)#]+)\.(?:md|bas)\) \|", re.MULTILINE)


def _sections(text: str) -> dict[str, str]:
    """What stands under each heading of the second level; under "" what comes first."""
    first, *others = re.split(r"^## ", text, flags=re.MULTILINE)
    return {"": first} | dict(section.split("\n", 1) for section in others)


def _listed(name: str, text: str) -> list[str]:
    """The pages that begin the rows of tables, as they are called from the tree's root."""
    return [posixpath.normpath(posixpath.join(posixpath.dirname(name), link)) for link in _ROW.findall(text)]


def pages(tree: Path, parts: list[str]) -> list[str]:
    """Every page that these parts of the site's first page lead to."""
    sections = _sections((tree / f"{HOME}.md").read_text("utf-8"))
    found = [page for part in parts for page in _listed(HOME, sections[part])]
    for page in [page for page in found if page in _LISTS_OTHERS]:
        found += _listed(page, (tree / f"{page}.md").read_text("utf-8"))
    return found


def _tree(name: str, caption: str, text: str) -> str:
    entries = "\n".join(f"/{page}" for page in _listed(name, text))
    return f"\n```{{toctree}}\n:hidden:\n{f':caption: {caption}' if caption else ''}\n\n{entries}\n```\n" if entries else ""


def _add_trees(app: Sphinx, name: str, source: list[str]) -> None:
    """Writes the tree of contents behind a page that lists others, and leaves out the parts that are not made."""
    if name not in _LISTS_OTHERS:
        return
    if name != HOME:
        source[0] += _tree(name, "", source[0])
        return
    sections = _sections(source[0])
    if app.tags.has("programmers"):
        for part in EVERYBODY_ELSE:
            del sections[part]
    whole = sections.pop("")
    trees = "".join(_tree(name, title, text) for title, text in sections.items())
    source[0] = whole + "".join(f"## {title}\n{text}" for title, text in sections.items()) + trees


def setup(app: Sphinx) -> dict[str, bool]:
    app.connect("source-read", _add_trees)
    return {"parallel_read_safe": True}
