"""Pictures of the site for somebody to look at: screenshots.py SITE FOLDER.

A desk, a tablet and a phone, light and dark, and the same pages on paper.
"""

from __future__ import annotations

import sys
from pathlib import Path

from browser import Browser

_PAGES = {
    "home": "docs/README.html",
    "first-query": "docs/guides/first-query.html",
    "member": "docs/reference/MDQueryQTX.html#setsearchscope",
    "keys": "docs/reference/attribute-keys.html",
    "exceptions": "docs/reference/exceptions.html",
    "example": "examples/photos-by-camera.html",
    "search": "search.html?q=SetSearchScope",
}
_DEVICES = {"desk": (1400, 900), "tablet": (820, 1100), "phone": (390, 844)}


def main(site: Path, folder: Path) -> None:
    """Makes every picture of a site in this folder."""
    folder.mkdir(parents=True, exist_ok=True)
    with Browser(site) as browser:
        for name, place in _PAGES.items():
            for device, (width, height) in _DEVICES.items():
                for scheme in ("light", "dark"):
                    browser.resize(width, height, dark=scheme == "dark")
                    browser.open("search.html")  # a change of the part behind "#" alone loads nothing
                    browser.open(place)
                    browser.picture(folder / f"{name}-{device}-{scheme}.png")
            browser.paper(folder / f"{name}.pdf")
    print(f"{len(_PAGES)} pages, in {folder}")


if __name__ == "__main__":
    main(Path(sys.argv[1]), Path(sys.argv[2]))
