"""Damaged copies of small pages."""
import random
import struct
import zlib
from dataclasses import dataclass

import tiff
from tiff import Tiff, without_end_of_block


@dataclass
class Variant:
    of: str
    how: str
    name: str
    data: bytes
    lost: bool  # bytes of pixels are gone: only refused, or as the whole file


def members(samples):
    """A small page of each kind and encoding."""
    seen = {}
    for sample in samples:
        key = tuple(sample.name.split(".")[:2])
        if 300 < len(sample.data) < 12000 and sample.turn == 1 and not sample.refused and not sample.name.startswith("edited"):
            if key not in seen or len(sample.data) < len(seen[key].data):
                seen[key] = sample
    return [sample for sample in seen.values()]


def repaired(name, data):
    """The end marker of the kind behind what is left; (how, data)."""
    if name.endswith(".jpg"):
        yield "cut, end marker", data + b"\xff\xd9"
    if data[:3] == b"GIF":
        yield "cut, end marker", data + b";"
    elif name.endswith(".png"):
        yield "cut, end marker", data + struct.pack(">I", 0) + b"IEND" + struct.pack(">I", zlib.crc32(b"IEND"))
        at = data.find(b"IDAT") - 4
        if at > 0:  # the last chunk made as long as what is left
            chunk = data[at + 4:]
            yield "cut, chunk closed", data[:at] + struct.pack(">I", len(chunk) - 4) + chunk + struct.pack(">I", zlib.crc32(chunk)) + \
                struct.pack(">I", 0) + b"IEND" + struct.pack(">I", zlib.crc32(b"IEND"))
    if name.endswith(".bmp"):
        start = struct.unpack("<I", data[10:14])[0]
        if struct.unpack("<I", data[14:18])[0] > 12 and data[30] in (1, 2) and len(data) > start:
            data = data[:start] + data[start:start + (len(data) - start) // 2 * 2] + b"\0\1"
            yield "cut, end marker", data[:2] + struct.pack("<I", len(data)) + data[6:34] + struct.pack("<I", len(data) - start) + data[38:]


def spoilt_tiffs(data):
    jpeg = Tiff(data).get(tiff.COMPRESSION)[0] == 7
    for what in range(4):
        file = Tiff(data)
        page = file.pages[-1]
        middle = len(page.pieces) // 2
        piece = page.pieces[middle]
        if what == 0 and len(piece) > 8:
            page.pieces[middle] = piece[:len(piece) // 2]
            yield "piece shortened", file.save(), not jpeg
        elif what == 1:
            page.counts = [0 if i == middle else len(p) for i, p in enumerate(page.pieces)]
            yield "piece of no bytes", file.save(), len(page.pieces) > 1
        elif what == 2 and len(page.pieces) > 1:
            del page.pieces[1:]
            yield "pieces missing", file.save(), True
        elif what == 3 and file.get(tiff.COMPRESSION, page)[0] == 4 and len(page.pieces[0]) > 40 and file.get(tiff.FILL, page, [1]) == [1]:
            page.pieces[0] = page.pieces[0][:max(4, len(page.pieces[0]) // 20)] + b"\0\x10\x01" + page.pieces[0][20:]
            yield "end of block early", file.save(), True


def damaged(samples, number):
    dice = random.Random(13)
    variants = []
    for sample in members(samples):
        is_tiff = sample.name.endswith(".tif")
        data = Tiff(sample.data).save() if is_tiff else sample.data
        add = lambda how, data, lost: variants.append(Variant(sample.name, how, sample.name, bytes(data), lost))
        add("whole", data, False)
        for i in range(number):
            cut = data[:30 + (len(data) - 31) * (i + 1) // number]
            add("cut", cut, True)
            for how, mended in repaired(sample.name, cut):
                add(how, mended, not sample.name.endswith(".jpg"))
        if is_tiff:
            for how, spoilt, lost in spoilt_tiffs(data):
                add(how, spoilt, lost)
        for i in range(2 * number):
            changed = bytearray(data)
            for _ in range(1 + i % 3):
                at = dice.randrange(min(200, len(data))) if i % 2 else dice.randrange(len(data))
                changed[at] = dice.choice((0, 255, changed[at] ^ 1 << dice.randrange(8), dice.randrange(256)))
            add("bytes changed", changed, False)
    return variants
