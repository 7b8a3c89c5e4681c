"""The theme's files, as a site needs them that is opened from the file system.

Debian's edition of the theme expects a server: its script imports another one, which browsers refuse to pages of the file
system, and its style sheet takes another from the server's root. The rule that makes a page dark where the system is dark
got lost when the style sheet was made. Here each is put right, Sphinx's scripts for older themes are left out, and the
licences of what remains are laid beside it.
"""

from __future__ import annotations

import re
import shutil
from pathlib import Path

from sphinx.application import Sphinx

_UNUSED = ("jquery.js", "underscore.js", "_sphinx_javascript_frameworks_compat.js")
_UNUSED_FILES = (*_UNUSED, "debug.css", "skeleton.css", "file.png", "minus.png", "plus.png")
_IMPORT = 'import Gumshoe from "./gumshoe-patched.js";\n'
_STYLE_IMPORT = "@import url(/javascript/normalize.css/normalize.css);\n"
_NORMALIZE = Path("/usr/share/javascript/normalize.css/normalize.css")
_DARK = re.compile(r'\bbody\[data-theme="dark"\] \{(.*?)\}', re.DOTALL)
_DARK_BY_ITSELF = "\n@media screen and (prefers-color-scheme: dark) {{ body[data-theme='auto'] {{{}}} }}\n"
_PACKAGES = ("furo", "node-normalize.css", "sphinx-basic-ng", "sphinx-common")


def _choose_scripts(app: Sphinx) -> None:
    scripts = app.builder.script_files  # type: ignore[attr-defined]
    scripts[:] = [script for script in scripts if Path(script.filename or "").name not in _UNUSED]


def _replace(file: Path, old: str, new: str) -> None:
    text = file.read_text("utf-8")
    if not text.startswith(old):
        raise ValueError(f"{file.name} of the theme is another edition; docs/site/theme_files.py has to be looked at")
    file.write_text(new + text.removeprefix(old), "utf-8")


def _settle(app: Sphinx, failure: Exception | None) -> None:
    if failure:
        return
    static = Path(app.outdir) / "_static"
    scripts = static / "scripts"
    _replace(scripts / "furo.js", _IMPORT, (scripts / "gumshoe-patched.js").read_text("utf-8"))
    style = static / "styles/furo.css"
    _replace(style, _STYLE_IMPORT, _NORMALIZE.read_text("utf-8"))
    [colours] = _DARK.findall(style.read_text("utf-8"))
    with style.open("a", encoding="utf-8") as file:
        file.write(_DARK_BY_ITSELF.format(colours))
    for name in (*_UNUSED_FILES, "scripts/gumshoe-patched.js", "../.buildinfo", "../objects.inv"):
        (static / name).unlink()
    (static / "licences").mkdir()
    for package in _PACKAGES:
        shutil.copyfile(f"/usr/share/doc/{package}/copyright", static / f"licences/{package}.txt")


def setup(app: Sphinx) -> dict[str, bool]:
    app.connect("builder-inited", _choose_scripts)
    app.connect("build-finished", _settle)
    return {"parallel_read_safe": True}
