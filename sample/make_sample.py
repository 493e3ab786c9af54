#!/usr/bin/python3
"""Writes the point table of the made-up town Musterstadt: make_sample.py FILE.dbf

The file itself is written by the Debian package python3-dbf. Coordinates are ETRS89/UTM zone 32 near E 650000 N 5651000;
half of the points carry the zone in front of EAST, as different programs deliver them.
"""
import math
import random
import sys

import dbf

COLUMNS = ("PT_NO C(15); EAST N(14,4); NORTH N(14,4); ELEV N(10,5); CODE C(8); CLASS C(1); CONNECT C(15); STATUS C(1); "
           "REM C(10); DRAW C(1); QUALITY C(1); PKN_ABM_BZ C(60); NASTABLE C(40); GMLID C(20)")
ORIGIN = (650000.0, 5651000.0)
TURN = math.radians(17)  # the main street does not run east
ZONE = 32000000.0
MARKS = (1110, 1120, 1140, 1600, 1700, 9500)
PLOT_WIDTHS = (18.4, 21.75, 19.9, 24.3, 17.65, 20.5, 22.1, 18.95, 23.4, 20.05)
PLOT_DEPTH = 41.5
STREET = 11.0
STREETS = ("Hauptstr.", "Gartenweg")

random.seed(1847)


def place(along, across):
    """East and north of a place told along and across the main street, with the noise of real measurements."""
    east = ORIGIN[0] + along * math.cos(TURN) - across * math.sin(TURN) + random.uniform(-0.08, 0.08)
    north = ORIGIN[1] + along * math.sin(TURN) + across * math.cos(TURN) + random.uniform(-0.08, 0.08)
    return round(east, 3), round(north, 3)


def height(east, north):
    return round(241.7 + (east - ORIGIN[0]) * 0.011 - (north - ORIGIN[1]) * 0.019 + random.uniform(-0.04, 0.04), 3)


class Town:
    def __init__(self):
        self.points = []
        self.running = {}
        self.objects = 0

    def add(self, number, position, zone, deleted=False, **columns):
        east, north = position
        self.points.append((deleted, dict(pt_no=number, east=east + (ZONE if zone else 0), north=north,
                                          elev=height(east, north), **columns)))

    def identifier(self, position, first):
        """The next point identifier in the kilometre square of a place, counted from `first`."""
        square = "32%03d%04d" % (position[0] // 1000, position[1] // 1000)
        number = self.running.get((square, first), first)
        self.running[square, first] = number + 1
        return square + "%06d" % number

    def imported(self, position, nas_class, values, remark, code, quality):
        """A point that the cadastre knows: an import left its identifier, its class and its attributes."""
        number = self.identifier(position, 1)
        self.objects += 1
        self.add(number, position, zone=True, code=code, status="B", rem=remark, draw="J", quality=quality,
                 pkn_abm_bz="%s,%s," % (number, values), nastable=nas_class,
                 gmlid="DETHMU00%08X" % (0x1A00 + 7 * self.objects))

    def building(self, outline, first, remark, zone, deleted=()):
        """A ring of corners under reserved identifiers, each joined to the next."""
        positions = [place(*corner) for corner in outline]
        numbers = [self.identifier(position, first) for position in positions]
        for n, position in enumerate(positions):
            self.add(numbers[n], position, zone, code="GEB", status="N", connect=numbers[(n + 1) % len(numbers)],
                     rem=remark, draw="J", quality="1", deleted=n in deleted)


def plots(town):
    """Two rows of plots on each street; corners are boundary points, those at the main street known to the cadastre."""
    new = 1000
    for row, (start, side) in enumerate(((STREET / 2, 1), (-STREET / 2, -1), (STREET * 1.5 + 2 * PLOT_DEPTH, 1))):
        for depth in (0.0, PLOT_DEPTH):
            along = -100.0
            for number, width in enumerate(PLOT_WIDTHS + (0.0,)):
                position = place(along, start + side * depth)
                if row < 2:
                    town.imported(position, "AX_Grenzpunkt" if number % 2 else "Grenzpunkt", "%d,4000,1000" % MARKS[number % len(MARKS)],
                                  STREETS[0], "GP", "2")
                else:
                    new += 1
                    town.add(str(new), position, zone=False, code="GP", status="N", rem=STREETS[1], draw="J", quality="1",
                             deleted=new in (1004, 1017))
                along += width


def houses(town):
    """A house on each plot. Those of the southern side of the main street were delivered without the zone."""
    for street, start, side in ((STREETS[0], STREET / 2, 1), (STREETS[0], -STREET / 2, -1),
                                (STREETS[1], STREET * 1.5 + 2 * PLOT_DEPTH, 1)):
        along = -100.0
        for plot, width in enumerate(PLOT_WIDTHS):
            left, right, front = along + 3.25, along + width - 3.25, 4.5 + plot % 3
            outline = [(left, front), (right, front), (right, front + 11.2), (left, front + 11.2)]
            number = 2 * plot + (1 if side > 0 else 2)
            town.building([(x, start + side * y) for x, y in outline], 20001, "%s %d" % (street[0], number),
                          zone=side > 0, deleted=(2,) if plot == 4 or number == 15 else ())
            along += width


def church(town):
    """The church beyond the western end: nave and choir."""
    outline = [(0, 0), (24, 0), (24, 3), (30, 3), (33, 6), (30, 9), (24, 9), (24, 12), (0, 12), (0, 9), (-5, 9), (-5, 3),
               (0, 3)]
    town.building([(x - 160, y + 8) for x, y in outline], 30001, "St. Änne", zone=False)


def control(town):
    """Survey points along the street and levelling marks on walls."""
    for n, along in enumerate((-150, -95, -40, 15, 70, 125)):
        town.imported(place(along, 0.6), "AX_Aufnahmepunkt", "1310,,1000", "Schacht" if n % 2 else "Gehweg", "AP", "1")
    for n, along in enumerate((-120.0, -20.0, 85.0)):
        town.add("HB%d" % (31 + n), place(along, 6.1), zone=False, code="HP", status="B", rem="Höhenbolz.", draw="N",
                 quality="1", deleted=n == 1)


def trees(town):
    for n in range(14):
        town.add(str(3001 + n), place(-130 + 19.3 * n, -4.2 if n % 2 else 4.2), zone=n % 2 == 0, code="BAUM", status="N",
                 rem="Linde" if n % 3 else "Weißdorn", draw="J", quality="3", deleted=n == 9)


def main():
    town = Town()
    plots(town)
    houses(town)
    church(town)
    control(town)
    trees(town)
    table = dbf.Table(sys.argv[1], COLUMNS, codepage="cp1252", dbf_type="db3")
    table.open(dbf.READ_WRITE)
    for deleted, columns in town.points:
        table.append(columns)
        if deleted:
            dbf.delete(table[-1])
    table.close()
    print("%d records, %d of them deleted" % (len(town.points), sum(deleted for deleted, _ in town.points)))


if __name__ == "__main__":
    main()
