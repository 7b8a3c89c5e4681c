"""The pages of a finished site as text: their places, their links, and what they load."""

from __future__ import annotations

import posixpath
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit

_LOADS = {("link", "href"), ("script", "src"), ("img", "src")}
_LEADS = {("a", "href"), *_LOADS}


class Page(HTMLParser):
    """One page. Links are given from the site's root."""

    def __init__(self, site: Path, place: str) -> None:
        super().__init__()
        self._folder = posixpath.dirname(place)
        self.place = place
        self.anchors: set[str] = set()
        self.links: list[str] = []
        self.outside: list[str] = []
        self.feed((site / place).read_text("utf-8"))

    def handle_starttag(self, tag: str, attrs: list[tuple[str, str | None]]) -> None:
        for name, value in attrs:
            if name == "id" and value:
                self.anchors.add(value)
            elif (tag, name) in _LEADS and value is not None:
                self._add(value)

    def _add(self, link: str) -> None:
        parts = urlsplit(link)
        if parts.scheme or parts.netloc:
            self.outside.append(link)
            return
        path = posixpath.normpath(posixpath.join(self._folder, unquote(parts.path))) if parts.path else self.place
        self.links.append(f"{path}#{unquote(parts.fragment)}" if parts.fragment else path)


def read(site: Path) -> dict[str, Page]:
    """Every page of a site, by its place."""
    places = sorted(str(path.relative_to(site)) for path in site.rglob("*.html"))
    return {place: Page(site, place) for place in places}


def broken(site: Path, pages: dict[str, Page]) -> list[str]:
    """Links that lead nowhere or out of the site."""
    found = []
    for page in pages.values():
        found += [f"{page.place}: {link} is outside" for link in page.outside]
        for link in page.links:
            place, _, anchor = link.partition("#")
            if not (site / place).is_file():
                found.append(f"{page.place}: there is no {place}")
            elif anchor and anchor not in pages[place].anchors:
                found.append(f"{page.place}: {place} has no #{anchor}")
    return found


def in_two_clicks(pages: dict[str, Page], start: str) -> set[str]:
    """Where somebody gets from a page with two clicks at most: pages, and places on them."""
    once = set(pages[start].links)
    twice = {link for place in once if place in pages for link in pages[place].links}
    return once | twice | {place.partition("#")[0] for place in twice}
