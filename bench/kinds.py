#!/usr/bin/python3
"""Makes an A4 page of 600 dpi in each kind that the imaging library decodes, by other programs' encoders.

kinds.py FOLDER FAX_PAGE
"""
import subprocess
import sys
from pathlib import Path

import numpy
from PIL import Image

SIZE = (4960, 7016)
# Kind: source, options of tiffcp.
TIFFS = {
    "1-none": ("bits", ["-c", "none"]), "1-packbits": ("bits", ["-c", "packbits"]), "1-lzw": ("bits", ["-c", "lzw"]),
    "1-deflate": ("bits", ["-c", "zip"]), "1-g3": ("bits", ["-c", "g3:1d"]), "1-g3-2d": ("bits", ["-c", "g3:2d"]),
    "1-g4": ("bits", ["-c", "g4"]), "1-g4-strip": ("bits", ["-c", "g4", "-r", "7016"]),
    "1-g4-tiles": ("bits", ["-c", "g4", "-t", "-w", "256", "-l", "256"]),
    "8-none": ("grey", ["-c", "none"]), "8-lzw": ("grey", ["-c", "lzw:2"]), "8-deflate": ("grey", ["-c", "zip:2"]),
    "8-jpeg": ("grey", ["-c", "jpeg", "-r", "16"]), "8-palette-lzw": ("palette", ["-c", "lzw"]),
    "16-deflate": ("wide", ["-c", "zip:2"]),
    "24-none": ("colour", ["-c", "none"]), "24-lzw": ("colour", ["-c", "lzw:2"]),
    "24-jpeg": ("colour", ["-c", "jpeg", "-r", "16"]), "24-deflate": ("colour", ["-c", "zip:2"]),
    "24-packbits": ("colour", ["-c", "packbits"]),
    "24-tiles": ("colour", ["-c", "zip:2", "-t", "-w", "256", "-l", "256"]),
}


def main():
    folder = Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    bits = Image.open(sys.argv[2]).convert("1").resize(SIZE)
    noise = numpy.random.default_rng(1).integers(0, 12, (SIZE[1], SIZE[0]), dtype=numpy.uint8)
    paper = numpy.array(bits.convert("L"))
    grey = Image.fromarray(numpy.where(paper > 127, 243 + noise, 20 + noise).astype(numpy.uint8))
    tint = numpy.linspace(0, 60, SIZE[0], dtype=numpy.uint8)
    blue = Image.fromarray(numpy.array(grey) - tint // 4)
    colour = Image.merge("RGB", (grey, grey.point(lambda v: v * 9 // 10), blue))
    wide = Image.fromarray(numpy.array(grey).astype(numpy.uint16) * 257)
    sources = {"bits": bits, "grey": grey, "colour": colour, "palette": colour.quantize(64), "wide": wide}
    for name, image in sources.items():
        image.save(folder.parent / f"{name}.tif", dpi=(600, 600))
    for kind, (source, options) in TIFFS.items():
        subprocess.run(["tiffcp", *options, folder.parent / f"{source}.tif", folder / f"tiff-{kind}.tif"], check=True)
    for name in ("bits", "grey", "colour", "palette"):
        sources[name].save(folder / f"png-{name}.png", dpi=(600, 600), compress_level=6)
        sources[name].save(folder / f"bmp-{name}.bmp", dpi=(600, 600))
    for name in ("grey", "colour"):
        sources[name].save(folder / f"jpeg-{name}.jpg", dpi=(600, 600), quality=85)
    colour.save(folder / "jpeg-progressive.jpg", dpi=(600, 600), quality=85, progressive=True)


main()
