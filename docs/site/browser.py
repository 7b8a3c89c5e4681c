"""A browser without a window, for looking at the site as its readers do: from the file system, with no network."""

from __future__ import annotations

import base64
import time
from dataclasses import dataclass
from pathlib import Path
from types import TracebackType
from typing import Any

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service

_PATIENCE = 30
# Results are shown one by one; the heading changes when the last one is there.
_IS_SEARCHED = "return Search.title?.innerText === 'Search Results'"
_RESULTS = "return [...document.querySelectorAll('#search-results li a')].map(a => [a.innerText, a.href])"
_LOADED = "return performance.getEntriesByType('resource').map(entry => entry.name)"


@dataclass
class Found:
    """One result of a search: what it is called, and where it is in the site."""

    title: str
    place: str


class Browser:
    """Chromium with the pages of one folder."""

    def __init__(self, site: Path) -> None:
        self._site = site.resolve()
        options = Options()
        # Without a sandbox, since root cannot have one; what is looked at is ours.
        for option in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"):
            options.add_argument(option)
        options.add_argument("--host-resolver-rules=MAP * ~NOTFOUND")
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self._driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)

    def __enter__(self) -> Browser:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None) -> None:
        self._driver.quit()

    def open(self, place: str) -> list[str]:
        """Shows a page of the site, and gives what the browser complained of."""
        self._driver.get(f"{self._site.as_uri()}/{place}")
        return [entry["message"] for entry in self._driver.get_log("browser")]

    def run(self, script: str) -> Any:
        """What a script in the page returns."""
        return self._driver.execute_script(script)

    def loaded_from_elsewhere(self) -> list[str]:
        """What the page took from outside its site."""
        return [name for name in self.run(_LOADED) if not name.startswith((self._site.as_uri(), "data:"))]

    def search(self, words: str) -> list[Found]:
        """What the site's search finds, the best first."""
        field = self._driver.find_element("css selector", ".sidebar-search")
        self._driver.execute_script("arguments[0].value = arguments[1]; arguments[0].form.submit()", field, words)
        limit = time.monotonic() + _PATIENCE
        while not self.run(_IS_SEARCHED):
            if time.monotonic() > limit:
                raise TimeoutError(f"the search for {words!r} does not end")
            time.sleep(0.01)
        root = f"{self._site.as_uri()}/"
        return [Found(title, place.removeprefix(root)) for title, place in self.run(_RESULTS)]

    def resize(self, width: int, height: int, dark: bool = False) -> None:
        """Makes the window as wide as a device's."""
        sizes = {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": width < 600}
        self._driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", sizes)
        scheme = {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}
        self._driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [scheme]})

    def picture(self, file: Path) -> None:
        """What the window shows, as PNG."""
        file.write_bytes(base64.b64decode(self._driver.execute_cdp_cmd("Page.captureScreenshot", {})["data"]))

    def paper(self, file: Path) -> None:
        """The whole page as it is printed, as PDF."""
        printed = self._driver.execute_cdp_cmd("Page.printToPDF", {"preferCSSPageSize": True})
        file.write_bytes(base64.b64decode(printed["data"]))
