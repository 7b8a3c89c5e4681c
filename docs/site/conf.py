"""The site: the pages under docs, with the examples and what belongs to them, for Sphinx.

Two forms of it are made. The whole one has a part for everybody who works on the plugin; with "-t programmers" there is
only what somebody who writes host programs reads, which is what the archive holds.
"""

from __future__ import annotations

import re
import sys
from pathlib import Path
from typing import Any

_HERE = Path(__file__).resolve().parent
_TREE = _HERE.parent.parent
sys.path.insert(0, str(_HERE))

import contents  # noqa: E402

tags: Any  # Sphinx brings them along: what "-t" names

# --- What there is ---

project = "Spotlight plugin"
author = "the Spotlight plugin authors"
version = re.findall(r"^project\(Spotlight VERSION ([0-9.]+)", (_TREE / "CMakeLists.txt").read_text("utf-8"), re.MULTILINE)[0]
release = version
extensions = ["myst_parser", "host_code", "contents", "questions", "tables", "theme_files"]

root_doc = "docs/README"
_for_all = [root_doc, *contents.pages(_TREE, contents.PROGRAMMERS)]
_wanted = _for_all if tags.has("programmers") else [*_for_all, *contents.pages(_TREE, contents.EVERYBODY_ELSE)]
include_patterns = [f"{page}.*" for page in _wanted]
exclude_patterns = [".*", "build", "dist", "**.def", "**.tsv", "**.py"]
source_suffix = {".md": "markdown", ".bas": "host program"}
myst_heading_anchors = 4
nitpicky = True

# --- How it looks ---

html_theme = "furo"
html_title = f"Spotlight plugin {version}"
html_static_path = ["static"]
html_css_files = ["site.css"]
templates_path = ["templates"]
html_additional_pages = {"index": "front_door.html"}
html_theme_options = {"top_of_page_button": None, "light_css_variables": {"color-code-background": "#f6f8fa"}}
html_last_updated_fmt = "%Y-%m-%d"
smartquotes_action = "q"  # never a dash for two hyphens: options begin with those
highlight_language = "none"  # what does not say what it is has no colours
pygments_style = "xcode"
pygments_dark_style = "github-dark"

# --- What a page from the file system cannot do, or nobody needs there ---

html_show_search_summary = False  # the summary of a result is fetched, and browsers fetch no file
html_copy_source = False
html_use_index = False  # docs/reference/index.md is the index
html_domain_indices = False
