"""Draws the rooms of this tree and the includes between them: docs/pictures/rooms.svg.

Rooms are those of include_directions.py, a room within a room inside it, and an arrow goes from a room to one of which
it includes something. An arrow that follows from two others is left out. Nothing in the picture is placed by hand, so
the picture of a tree is always the same.
"""

from __future__ import annotations

import sys
from collections.abc import Iterator
from dataclasses import dataclass, field
from pathlib import Path

from include_directions import MAY_INCLUDE, includes_in, room_of

PICTURE = "docs/pictures/rooms.svg"

_PRODUCT = ("host", "convert", "spotlight", "plugin")
_WIDTH_OF_LETTER, _ROOM_HEIGHT = 7.2, 28
_GAP, _FLOOR_GAP, _PADDING, _TITLE = 14, 30, 12, 22


@dataclass
class Box:
    """A room, or a folder of rooms with those inside it. Its place counts from the corner of what it is in."""

    name: str
    inside: dict[str, Box] = field(default_factory=dict)
    arrows: set[tuple[str, str]] = field(default_factory=set)
    x: float = 0
    y: float = 0
    width: float = 0
    height: float = 0


def _way_to(path: str) -> tuple[str, ...]:
    """The boxes from the outermost to the one that a file is in; none for a file that no box shows."""
    top = path.split("/")[0]
    if top in ("tests", "platform"):
        return (top,)
    room = room_of(path)
    if room is None:
        return ()
    if top in _PRODUCT:
        return ("the product", room)
    way = tuple(part for part in room.split("/") if part != "metadata")
    has_rooms_inside = any(other.startswith(room + "/") for other in MAY_INCLUDE)
    return (*way, "host.h" if room == "simulator/host" else "files") if has_rooms_inside else way


def _arrows(tree: Path) -> Iterator[tuple[tuple[str, ...], tuple[str, ...]]]:
    """Each include of this tree that leads from one box to another."""
    for where, target in includes_in(tree):
        if (tree / target).is_file():
            yield _way_to(where), _way_to(target)


def rooms(tree: Path) -> Box:
    """The boxes of this tree with the arrows between them, none placed yet."""
    picture = Box("")
    for start, end in _arrows(tree):
        for way in (start, end):
            box = picture
            for name in way:
                box = box.inside.setdefault(name, Box(name))
        box, depth = picture, 0
        while start[depth : depth + 1] == end[depth : depth + 1] != ():
            box, depth = box.inside[start[depth]], depth + 1
        if len(start) > depth < len(end):
            box.arrows.add((start[depth], end[depth]))
    return picture


def _reachable(arrows: set[tuple[str, str]], start: str) -> set[str]:
    found: set[str] = set()
    todo = [start]
    while todo:
        following = {end for begin, end in arrows if begin == todo[-1]} - found
        todo.pop()
        found |= following
        todo += sorted(following)
    return found


def _reduced(arrows: set[tuple[str, str]]) -> list[tuple[str, str]]:
    """The arrows that do not follow from others."""
    return sorted(arrow for arrow in arrows if arrow[1] not in _reachable(arrows - {arrow}, arrow[0]))


def _floors(box: Box) -> list[list[Box]]:
    """What is inside a box, from the top: each stands above everything that it includes."""
    below = {name: _reachable(box.arrows, name) for name in box.inside}
    heights: dict[str, int] = {}
    for name in sorted(below, key=lambda name: len(below[name])):
        heights[name] = max((heights[other] + 1 for other in below[name]), default=0)
    return [
        [box.inside[name] for name in sorted(box.inside) if heights[name] == height]
        for height in sorted(set(heights.values()), reverse=True)
    ]


def _heighten(box: Box, height: float) -> None:
    """Makes a folder as high as its neighbours, so that no arrow has to pass above or below it."""
    for inner in box.inside.values():
        inner.y += (height - box.height) / 2
    box.height = height


def place(box: Box) -> None:
    """Gives everything inside a box its place, and the box its size."""
    title = len(box.name) * _WIDTH_OF_LETTER + 2 * _PADDING
    if not box.inside:
        box.width, box.height = title, _ROOM_HEIGHT
        return
    for inner in box.inside.values():
        place(inner)
    floors = _floors(box)
    widths = [sum(inner.width for inner in floor) + _GAP * (len(floor) - 1) for floor in floors]
    box.width = max(title, *widths) + 2 * _PADDING
    y: float = _TITLE if box.name else _PADDING
    for floor, width in zip(floors, widths):
        x = (box.width - width) / 2
        height = max(inner.height for inner in floor)
        for inner in floor:
            if inner.inside:
                _heighten(inner, height)
            inner.x, inner.y = x, y + (height - inner.height) / 2
            x += inner.width + _GAP
        y += height + _FLOOR_GAP
    box.height = y - _FLOOR_GAP + _PADDING


def _lines(box: Box, x: float, y: float, depth: int) -> Iterator[str]:
    x, y = x + box.x, y + box.y
    if box.name:
        kind = "folder" if box.inside else "room"
        yield (f'<rect class="{kind}{depth}" x="{x:.0f}" y="{y:.0f}" width="{box.width:.0f}" height="{box.height:.0f}"'
               ' rx="5"/>')
        yield f'<text x="{x + box.width / 2:.0f}" y="{y + (15 if box.inside else 18):.0f}">{box.name}</text>'
    for _, inner in sorted(box.inside.items()):
        yield from _lines(inner, x, y, depth + 1)
    for begin, end in _reduced(box.arrows):
        upper, lower = box.inside[begin], box.inside[end]
        x1, y1 = x + upper.x + upper.width / 2, y + upper.y + upper.height
        x2, y2 = x + lower.x + lower.width / 2, y + lower.y - 3
        bend = (y2 - y1) / 2
        yield (f'<path d="M{x1:.0f},{y1:.0f} C{x1:.0f},{y1 + bend:.0f} {x2:.0f},{y2 - bend:.0f} {x2:.0f},{y2:.0f}"'
               ' marker-end="url(#head)"/>')


def picture(tree: Path) -> str:
    """The picture of this tree."""
    everything = rooms(tree)
    place(everything)
    size = f"{everything.width:.0f} {everything.height:.0f}"
    head = f"""<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {size}" role="img">
<title>The rooms, and which include which</title>
<style>
text {{ font: 12px ui-monospace, Menlo, Consolas, monospace; text-anchor: middle; fill: #1b2733; }}
rect {{ fill: #ffffff; stroke: #5b7083; }}
.ground {{ stroke: none; }}
.folder1 {{ fill: #e4ebf1; }} .folder2 {{ fill: #d3dee8; }} .folder3 {{ fill: #e4ebf1; }}
path {{ fill: none; stroke: #33495d; stroke-width: 1.3; }}
#head path {{ fill: #33495d; stroke: none; }}
</style>
<marker id="head" viewBox="0 0 8 8" refX="6" refY="4" markerWidth="7" markerHeight="7" orient="auto">\
<path d="M0,0 L8,4 L0,8 z"/></marker>
<rect class="ground" width="100%" height="100%"/>"""
    return "\n".join([head, *_lines(everything, 0, 0, 0), "</svg>\n"])


def main() -> None:
    """Command line: room_picture.py TREE. Draws the tree's picture anew."""
    tree = Path(sys.argv[1])
    (tree / PICTURE).write_text(picture(tree), "utf-8")


if __name__ == "__main__":
    main()
