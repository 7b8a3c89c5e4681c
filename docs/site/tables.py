"""Tables without a head: Markdown knows none, so some on the pages have an empty one, which the site leaves out."""

from __future__ import annotations

from docutils import nodes
from sphinx.application import Sphinx


def _drop_empty_heads(_: Sphinx, document: nodes.document) -> None:
    for head in list(document.findall(nodes.thead)):
        if not head.astext().strip():
            head.parent.remove(head)


def setup(app: Sphinx) -> dict[str, bool]:
    app.connect("doctree-read", _drop_empty_heads)
    return {"parallel_read_safe": True}
