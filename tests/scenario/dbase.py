"""A second opinion on dBase tables, for tests: reads the file by its own header and shares no code with the product."""


class Table:
    def __init__(self, path):
        with open(path, "rb") as file:
            self.bytes = file.read()
        data = self.bytes
        self.count = int.from_bytes(data[4:8], "little")
        self.header = int.from_bytes(data[8:10], "little")
        self.size = int.from_bytes(data[10:12], "little")
        self.columns = []  # name, type, width, decimals
        at = 32
        while data[at] != 0x0D:
            name = data[at:at + 11].split(b"\0")[0].decode("cp1252")
            self.columns.append((name, chr(data[at + 11]), data[at + 16], data[at + 17]))
            at += 32
        self.descriptors_end = at + 1
        self.records = [data[self.header + n * self.size:self.header + (n + 1) * self.size] for n in range(self.count)]

    def check_regular(self):
        assert self.header == self.descriptors_end == 33 + 32 * len(self.columns), "length of the header"
        assert self.size == 1 + sum(column[2] for column in self.columns), "length of a record"
        assert len(self.bytes) == self.header + self.count * self.size + 1, "length of the file"
        assert self.bytes[-1] == 0x1A, "mark of the end"
        assert all(record[:1] in (b" ", b"*") for record in self.records), "flags of deletion"

    def live(self):
        """The records that are not deleted, as dictionaries of texts without padding."""
        points = []
        for record in self.records:
            if record[:1] != b" ":
                continue
            at, point = 1, {}
            for name, _, width, _ in self.columns:
                point[name] = record[at:at + width].decode("cp1252").strip(" ")
                at += width
            points.append(point)
        return points
