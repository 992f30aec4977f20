"""The six blades of a lens's iris: the mark of the overlays and of the ornament picture."""

import math

from .raster import arc, cos, sin

BLADES = 6


class Iris:
    """An iris about (cx, cy): a disc of `radius` with a six-sided opening of corner radius `opening`."""

    def __init__(self, cx, cy, radius, opening, turn=12.0):
        self.cx, self.cy, self.radius = cx, cy, radius
        corners = arc(cx, cy, opening, opening, turn, turn + 360.0, BLADES)
        self.edges = []  # (start, end on the rim, outward normal, offset of the edge's line)
        for number in range(BLADES):
            (ax, ay), (bx, by) = corners[number], corners[number + 1]
            length = math.sqrt((bx - ax) ** 2 + (by - ay) ** 2)
            ux, uy = (bx - ax) / length, (by - ay) / length
            nx, ny = uy, -ux
            if nx * (ax - cx) + ny * (ay - cy) < 0.0:
                nx, ny = -nx, -ny
            offset = nx * (ax - cx) + ny * (ay - cy)
            along = (ax - cx) * ux + (ay - cy) * uy
            reach = math.sqrt(radius * radius - offset * offset) - along
            self.edges.append(((ax, ay), (ax + ux * reach, ay + uy * reach), (nx, ny), offset))

    def strokes(self):
        """The rim and the blades' edges as polylines."""
        rim = arc(self.cx, self.cy, self.radius, self.radius, 0, 360, 96)
        return [rim] + [[start, end] for start, end, _, _ in self.edges]

    def blade(self, x, y):
        """Number of the blade seen at a point, or None in the opening; the rim is not looked at."""
        outside = [(x - self.cx) * nx + (y - self.cy) * ny > offset
                   for _, _, (nx, ny), offset in self.edges]
        for number in range(BLADES):  # a blade lies under the one before it
            if outside[number] and not outside[number - 1]:
                return number
        return None

    def depth(self, number, x, y):
        """How far a point lies behind the edge of blade `number`."""
        _, _, (nx, ny), offset = self.edges[number]
        return (x - self.cx) * nx + (y - self.cy) * ny - offset

    def shade(self, number):
        """-1 to 1: how squarely blade `number` faces light from the upper left."""
        angle = math.radians(360.0 / BLADES * number)
        return cos(angle) * 0.6 + sin(angle) * 0.8
