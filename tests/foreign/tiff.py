"""TIFF files taken apart, edited and put together with their directories first. Pixels stay as they are."""
import struct

SIZES = {1: 1, 2: 1, 3: 2, 4: 4, 5: 8, 6: 1, 7: 1, 8: 2, 9: 4, 10: 8, 11: 4, 12: 8}
NUMBERS = {1: "B", 3: "H", 4: "I"}
WIDTH, HEIGHT, BITS, COMPRESSION, PHOTOMETRIC, FILL, ORIENTATION, SAMPLES = 256, 257, 258, 259, 262, 266, 274, 277
STRIPS, ROWS, COUNTS, X_RES, Y_RES, PLANAR, UNIT, TILES, TILE_COUNTS, TABLES = 273, 278, 279, 282, 283, 284, 296, 324, 325, 347


class Page:
    def __init__(self):
        self.tags, self.pieces, self.counts = {}, [], None

    def tiled(self):
        return TILES in self.tags


class Tiff:
    def __init__(self, data=None, order="<"):
        self.order, self.pages, self.tail = order, [], b""
        if data is None:
            self.pages = [Page()]
            return
        self.order = "<" if data[:2] == b"II" else ">"
        at = self.unpack("I", data[4:8])[0]
        while at:
            page, count = Page(), self.unpack("H", data[at:at + 2])[0]
            for i in range(count):
                entry = data[at + 2 + 12 * i:at + 14 + 12 * i]
                tag, kind, number = self.unpack("HHI", entry[:8])
                size = SIZES[kind] * number
                place = self.unpack("I", entry[8:])[0] if size > 4 else at + 10 + 12 * i
                page.tags[tag] = (kind, number, data[place:place + size])
            at = self.unpack("I", data[at + 2 + 12 * count:at + 6 + 12 * count])[0]
            self.pages.append(page)
            offsets, counts = (self.get(tag, page) for tag in ((TILES, TILE_COUNTS) if page.tiled() else (STRIPS, COUNTS)))
            page.pieces = [data[offset:offset + length] for offset, length in zip(offsets, counts)]

    def unpack(self, form, data):
        return struct.unpack(self.order + form, data)

    def get(self, tag, page=None, default=()):
        kind, number, raw = (page or self.pages[0]).tags.get(tag, (0, 0, b""))
        if kind == 5:
            values = self.unpack(f"{2 * number}I", raw)
            return list(zip(values[::2], values[1::2]))
        return list(self.unpack(f"{number}{NUMBERS[kind]}", raw)) if kind in NUMBERS else list(default)

    def set(self, tag, kind, *values, page=None):
        form = f"{2 * len(values)}I" if kind == 5 else f"{len(values)}{NUMBERS.get(kind, 'B')}"
        flat = [part for value in values for part in value] if kind == 5 else values
        (page or self.pages[0]).tags[tag] = (kind, len(values), struct.pack(self.order + form, *flat))
        return self

    def drop(self, *tags):
        for tag in tags:
            self.pages[0].tags.pop(tag, None)
        return self

    def save(self):
        places, at = [], 8
        for page in self.pages:
            places.append(at)
            offsets = TILES if page.tiled() else STRIPS
            self.set(offsets, 4, *[0] * len(page.pieces), page=page)
            if (TILE_COUNTS if page.tiled() else COUNTS) in page.tags:
                counts = page.counts or [len(piece) for piece in page.pieces]
                self.set(TILE_COUNTS if page.tiled() else COUNTS, 4, *counts, page=page)
            at += 6 + 12 * len(page.tags) + sum(len(raw) + 1 & ~1 for _, _, raw in page.tags.values() if len(raw) > 4)
        for page in self.pages:
            starts = []
            for piece in page.pieces:
                starts.append(at)
                at += len(piece) + 1 & ~1
            self.set(TILES if page.tiled() else STRIPS, 4, *starts, page=page)
        out = (b"II*\0" if self.order == "<" else b"MM\0*") + struct.pack(self.order + "I", 8)
        for index, page in enumerate(self.pages):
            values, far = b"", len(out) + 6 + 12 * len(page.tags)
            out += struct.pack(self.order + "H", len(page.tags))
            for tag, (kind, number, raw) in sorted(page.tags.items()):
                place = raw.ljust(4, b"\0") if len(raw) <= 4 else struct.pack(self.order + "I", far + len(values))
                values += (raw + b"\0" * (len(raw) & 1)) if len(raw) > 4 else b""
                out += struct.pack(self.order + "HHI", tag, kind, number) + place
            out += struct.pack(self.order + "I", places[index + 1] if index + 1 < len(places) else 0) + values
        return out + b"".join(piece + b"\0" * (len(piece) & 1) for page in self.pages for piece in page.pieces) + self.tail


def without_end_of_block(strip):
    """A G4 strip without its last 24 bits, which say that it ends."""
    bits = bin(int.from_bytes(b"\1" + strip, "big"))[3:].rstrip("0")
    assert bits.endswith("000000000001" * 2), "no end of block"
    bits = bits[:-24]
    bits += "0" * (-len(bits) % 8)
    return int("1" + bits, 2).to_bytes(len(bits) // 8 + 1, "big")[1:]
