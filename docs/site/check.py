"""Looks at a finished site in a browser, as its readers do: check.py SITE [PAGE...].

Every page opens from the file system without a word of the browser's, fits a phone and takes nothing from elsewhere; no
link is broken; the search finds every name and every message; and what people ask first has its answer within two clicks
and within one search. With the names of pages only these are opened, and nothing is searched for.
"""

from __future__ import annotations

import csv
import re
import sys
from pathlib import Path

import site_pages
from browser import Browser, Found

_TREE = Path(__file__).resolve().parents[2]
_REFERENCE = _TREE / "docs/reference"
_HOME = "docs/README.html"
_CLASS_PAGES = ("MDQueryQTX", "MDItemQTX", "MDQueryBatchingParamsQTX", "ShotlightQTX")
_MESSAGE_PAGES = ("docs/guides/troubleshooting.html", "docs/reference/exceptions.html")
_PHONE = (360, 740)
_DESK = (1400, 900)
_TOO_WIDE = "return document.documentElement.scrollWidth > window.innerWidth"
# Among so many results a reader sees what was looked for.
_SEEN = 5

_QUESTIONS = {
    "How do I install it?": "docs/guides/installing.html",
    "How do I find all pictures of one camera?": "docs/guides/worked-queries.html#pictures-of-one-camera",
    "What does SetSearchScope raise?": "docs/reference/MDQueryQTX.html#setsearchscope",
    "Why do I get nothing?": "docs/guides/nothing-found.html",
}


def _names() -> dict[str, list[str]]:
    """Every name of the reference, with its places in the site: members are what has a declaration under its heading,
    constants have a line in one, and keys a row."""
    places: dict[str, list[str]] = {}
    for page in _CLASS_PAGES:
        text = (_REFERENCE / f"{page}.md").read_text("utf-8")
        for name in re.findall(r"^### (\w+)\n\n```declaration", text, re.MULTILINE):
            places.setdefault(name, []).append(f"docs/reference/{page}.html#{name.lower()}")
        for name in re.findall(r"^(\w+)=", text, re.MULTILINE):
            places.setdefault(name, []).append(f"docs/reference/{page}.html")
    keys = re.findall(r"^\| `(kMDItem\w+)`", (_REFERENCE / "attribute-keys.md").read_text("utf-8"), re.MULTILINE)
    return places | {name: ["docs/reference/attribute-keys.html"] for name in keys}


def _messages() -> list[str]:
    """Every message that the plugin words itself, as a program shows it: with numbers where the table has slanted words."""
    with (_REFERENCE / "exceptions.tsv").open(encoding="utf-8") as table:
        worded = {row["message"] for row in csv.DictReader(table, delimiter="\t", quoting=csv.QUOTE_NONE)}
    return sorted(re.sub(r"\*\w+\*", "7", message) for message in worded if not re.fullmatch(r"\*\w+\*", message))


class Check:
    """What was looked at, and what is wrong."""

    def __init__(self, browser: Browser, site: Path) -> None:
        self._browser = browser
        self._pages = site_pages.read(site)
        self.wrong = site_pages.broken(site, self._pages)
        self.count = {"links": sum(len(page.links) for page in self._pages.values())}

    def _need(self, is_right: bool, complaint: str) -> None:
        if not is_right:
            self.wrong.append(complaint)

    def open_pages(self, places: list[str]) -> None:
        """Opens these pages, or all."""
        places = places or list(self._pages)
        for place in places:
            self._browser.resize(*_PHONE)
            self.wrong += [f"{place}: {message}" for message in self._browser.open(place)]
            self.wrong += [f"{place} takes {name}" for name in self._browser.loaded_from_elsewhere()]
            self._need(not self._browser.run(_TOO_WIDE), f"{place} is wider than a phone")
        self.count["pages"] = len(places)

    def search_for_names(self) -> None:
        """Searches for every name, all of whose places must be shown, and for every message, of which one page must be."""
        self._browser.resize(*_DESK)
        self._browser.open(_HOME)
        names, messages = _names(), _messages()
        for name, places in names.items():
            results = self._browser.search(name)
            for place in places:
                self._need(_shows(results, place), f"the search for {name} does not show {place}")
        for message in messages:
            results = self._browser.search(message)
            self._need(any(_shows(results, place) for place in _MESSAGE_PAGES), f"the search for {message!r} shows nothing")
        self.count |= {"names": len(names), "messages": len(messages)}

    def ask(self) -> None:
        """Asks what people ask first."""
        near = site_pages.in_two_clicks(self._pages, _HOME)
        for question, place in _QUESTIONS.items():
            self._need(place in near, f"{place} is more than two clicks away")
            self._need(_shows(self._browser.search(question)[:1], place), f"{question!r} does not lead to {place}")
        self.count["questions"] = len(_QUESTIONS)


def _shows(results: list[Found], place: str) -> bool:
    shown = [result.place for result in results[:_SEEN]]
    return place in shown or place in [result.partition("#")[0] for result in shown]


def main(site: Path, places: list[str]) -> int:
    """1 when something is wrong."""
    with Browser(site) as browser:
        check = Check(browser, site)
        check.open_pages(places)
        if not places:
            check.search_for_names()
            check.ask()
    for complaint in check.wrong:
        print(f"wrong: {complaint}")
    print(", ".join(f"{count} {what}" for what, count in check.count.items()))
    return 1 if check.wrong else 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]), sys.argv[2:]))
