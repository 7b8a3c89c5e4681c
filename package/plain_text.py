"""A page of the site as plain text, for somebody who has unpacked the archive and opens the file that is called README."""

from __future__ import annotations

import posixpath
import re
import textwrap

_LINK = re.compile(r"\[([^\]]+)\]\(([^)#]+)\.md(#[^)]*)?\)")
_LINE = 100


def _place(folder: str, page: str, anchor: str) -> str:
    return f"site/{posixpath.normpath(posixpath.join(folder, page))}.html{anchor}"


def _filled(paragraph: str) -> str:
    """The paragraph with lines that are full again: places are longer than the links were."""
    indent = " " * len(re.findall(r"\A(?:- |\d+\. )?", paragraph)[0])
    text = " ".join(paragraph.split())
    return textwrap.fill(text, _LINE, subsequent_indent=indent, break_long_words=False, break_on_hyphens=False)


def _prose(text: str, folder: str) -> str:
    text = re.sub(r" \[Index\]\([^)]*\)$", "", text, flags=re.MULTILINE)
    text = _LINK.sub(lambda link: f"{link[1]} ({_place(folder, link[2], link[3] or '')})", text)
    blocks = []
    for block in re.split(r"\n{2,}", text.strip("\n")):
        if block.startswith("#"):
            title = block.lstrip("# ")
            blocks.append(f"{title}\n{('=' if block.startswith('# ') else '-') * len(title)}")
        else:
            blocks.append("\n".join(_filled(part) for part in re.split(r"\n(?=- |\d+\. )", block)))
    return "\n\n".join(blocks)


def plain_text(page: str, folder: str) -> str:
    """The Markdown of a page in this folder of the tree: links are named by their places in the archive, code is
    indented."""
    parts = re.split(r"^```.*\n((?:.*\n)*?)```$", page, flags=re.MULTILINE)
    prose = [_prose(part, folder) for part in parts[::2]]
    code = ["".join(f"    {line}".rstrip() + "\n" for line in part.splitlines()) for part in parts[1::2]]
    woven = [text for pair in zip(prose, [*code, ""]) for text in pair]
    return "\n\n".join(text.rstrip("\n") for text in woven if text) + "\n"
