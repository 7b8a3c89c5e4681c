"""Draws ratios beside their goal, as an SVG that is readable in light and dark, and puts tables into pages."""

from __future__ import annotations

import re
from collections.abc import Sequence
from pathlib import Path
from xml.sax.saxutils import escape

_STYLE = """
    text { font: 12px system-ui, sans-serif; fill: #1f2328; }
    .faint { fill: #59636e; }
    .rule { stroke: #d1d9e0; }
    .goal { stroke: #d1242f; stroke-dasharray: 4 3; }
    .native { fill: #8250df; }
    .shipping { fill: #0969da; }
    @media (prefers-color-scheme: dark) {
      text { fill: #e6edf3; }
      .faint { fill: #9198a1; }
      .rule { stroke: #3d444d; }
      .goal { stroke: #ff7b72; }
      .native { fill: #ab7df8; }
      .shipping { fill: #4493f8; }
    }
"""


def draw(path: Path, title: str, rows: Sequence[tuple[str, dict[str, float]]], goal: float) -> None:
    """One line for each row: a dot for each series, and a line at the goal. The scale begins at 0.8."""
    left, right, step, top = 250, 560, 17, 58
    low, high = 0.8, max(1.2, max(value for _, series in rows for value in series.values()))
    height = top + step * len(rows) + 16

    def x(value: float) -> float:
        return left + (right - left) * (value - low) / (high - low)

    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {right + 40} {height}" role="img">',
             f"  <title>{escape(title)}</title>", f"  <style>{_STYLE}  </style>"]
    for at in range(round(low * 10), round(high * 10) + 1, 1 if high < 1.6 else 2):
        parts.append(f'  <line class="rule" x1="{x(at / 10):.1f}" y1="{top - 12}" x2="{x(at / 10):.1f}" y2="{height - 12}"/>')
        parts.append(f'  <text class="faint" x="{x(at / 10):.1f}" y="{top - 18}" text-anchor="middle">{at / 10:g}</text>')
    parts.append(f'  <line class="goal" x1="{x(goal):.1f}" y1="{top - 12}" x2="{x(goal):.1f}" y2="{height - 12}"/>')
    at = left
    for name in rows[0][1]:
        parts.append(f'  <circle class="{name}" cx="{at}" cy="16" r="4"/><text x="{at + 9}" y="20">{name}</text>')
        at += 90
    for index, (name, series) in enumerate(rows):
        y = top + step * index
        parts.append(f'  <text x="{left - 10}" y="{y + 4}" text-anchor="end">{escape(name)}</text>')
        parts.extend(f'  <circle class="{kind}" cx="{x(max(low, value)):.1f}" cy="{y}" r="4"/>' for kind, value in series.items())
    path.write_text("\n".join([*parts, "</svg>"]) + "\n", "utf-8")


def put_into_page(page: Path, name: str, text: str) -> None:
    """Replaces what stands between the comments that begin and end the part of that name."""
    begin, end = f"<!-- {name}: written by ./dev bench -->", f"<!-- end of {name} -->"
    pattern = re.compile(f"{re.escape(begin)}.*?{re.escape(end)}", re.DOTALL)
    whole = page.read_text("utf-8")
    if not pattern.search(whole):
        raise SystemExit(f"{page} has no part named {name}")
    page.write_text(pattern.sub(lambda _: f"{begin}\n\n{text}\n\n{end}", whole), "utf-8")
