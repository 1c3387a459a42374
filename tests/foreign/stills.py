"""PNG, BMP, GIF and JPEG of other programs' encoders, and kinds that are refused."""
import io
import itertools
import struct

import numpy as np
from PIL import Image

import tiff
from corpus import CONVERT, DEEP, EXACT, JPEG, SPREAD, Sample, bases, grey3, on_paper, pbm, pnm, raw_tiff, run, tiffcp, wrapped
from tiff import Tiff

PNG_REFS, JPEG_REFS, BMP_REFS = ("pillow", "pngtopam", "convert"), ("pillow", "djpeg"), ("pillow", "bmptopnm", "convert")


def pngs(src):
    for w, h in [(61, 47), (37, 23), (1, 1), (2049, 21)]:
        white, g, c = src.arrays(w, h)
        alpha = np.tile(np.linspace(0, 255, w).astype(np.uint8), (h, 1))
        few = lambda n: np.asarray(Image.fromarray(c).quantize(n).convert("RGB"))
        for lace in ([], ["-interlace"]):
            add = lambda label, data, want, *more, limits=EXACT: Sample(
                f"png-netpbm.{label}{''.join(lace)}.{w}x{h}.png", run("pnmtopng", "-quiet", *lace, *more, stdin=data), want, limits, PNG_REFS)
            yield add("1", pbm(white), grey3(white * 255), "-size=8000 8000 1")
            for bits in (2, 4, 8):
                levels = g.astype(int) * ((1 << bits) - 1) // 255
                yield add(f"grey{bits}", pnm(levels, (1 << bits) - 1), grey3(levels * 255 // ((1 << bits) - 1)))
                yield add(f"palette{bits}", pnm(few(1 << bits)), few(1 << bits))
            yield add("grey16", pnm(g.astype(int) * 257, 65535), grey3(g), limits=DEEP)
            yield add("rgb", pnm(c), c, "-force")
            yield add("rgb16", pnm(c.astype(int) * 257, 65535), c, "-force", limits=DEEP)
            most = few(4)[0, 0]
            colour = "rgb:%02x/%02x/%02x" % tuple(most)
            clear = np.where((few(4) == most).all(2)[..., None], 255, few(4)).astype(np.uint8)
            yield add("palette-trns", pnm(few(4)), clear, "-transparent", "=" + colour)
        for kind, image in (("LA", Image.fromarray(np.dstack((g, alpha)))), ("RGBA", Image.fromarray(np.dstack((c, alpha))))):
            out = io.BytesIO()
            image.save(out, "PNG", dpi=(300, 150))
            yield Sample(f"png-pillow.{kind}.{w}x{h}.png", out.getvalue(), on_paper(grey3(g) if kind == "LA" else c, alpha), EXACT,
                         ("convert", "pillow"))
        raw = np.dstack((c, alpha)).tobytes()
        for kind, depth in ((0, 1), (0, 2), (0, 4), (0, 8), (0, 16), (2, 8), (2, 16), (3, 1), (3, 2), (3, 4), (3, 8), (4, 8), (4, 16), (6, 8), (6, 16)):
            for lace in ("none", "PNG"):
                data = run(CONVERT, "-size", f"{w}x{h}", "-depth", "8", "rgba:-", *(["-colors", str(1 << depth)] if kind == 3 else []),
                           *(["-alpha", "remove"] if kind in (0, 2, 3) else []), "-interlace", lace, "-define", f"png:color-type={kind}",
                           "-define", f"png:bit-depth={depth}", "-density", "204x196", "png:-", stdin=raw)
                yield Sample(f"png-magick.type{kind}-{depth}-{lace}.{w}x{h}.png", data, limits=DEEP, refs=PNG_REFS[:1])


def jpegs(src):
    for w, h in [(61, 47), (37, 23), (1, 1), (2049, 21)]:
        _, g, c = src.arrays(w, h)
        for label, options in (("grey", ["-grayscale"]), ("444", ["-sample", "1x1"]), ("422", ["-sample", "2x1"]), ("440", ["-sample", "1x2"]),
                               ("420", []), ("411", ["-sample", "4x1"]), ("rgb", ["-rgb"])):
            for more in ([], ["-progressive"], ["-restart", "1"], ["-arithmetic"]):
                limits = JPEG if label in ("grey", "444", "rgb") else SPREAD
                yield Sample(f"jpeg-cjpeg.{label}{''.join(more)}.{w}x{h}.jpg", run("cjpeg", "-quality", "90", *options, *more, stdin=pnm(c)),
                             limits=limits, refs=JPEG_REFS)
        for density, unit in (("300x150", "PixelsPerInch"), ("80x80", "PixelsPerCentimeter"), ("1x1", "Undefined")):
            yield Sample(f"jpeg-magick.{density}.{w}x{h}.jpg", run(CONVERT, "-density", density, "-units", unit, "-", "-sampling-factor", "1x1",
                         "jpg:-", stdin=pnm(c)), limits=JPEG, refs=JPEG_REFS)
        cmyk = Image.fromarray(c).convert("CMYK")
        for label, options in (("", {}), ("-progressive", {"progressive": True})):
            out = io.BytesIO()
            cmyk.save(out, "JPEG", quality=90, subsampling=0, **options)
            yield Sample(f"jpeg-pillow.cmyk{label}.{w}x{h}.jpg", out.getvalue(), limits=JPEG, refs=("pillow",))
        yield Sample(f"jpeg-magick.cmyk.{w}x{h}.jpg", run(CONVERT, "-", "-colorspace", "CMYK", "-sampling-factor", "1x1", "jpg:-", stdin=pnm(c)),
                     limits=JPEG, refs=("pillow",))
    _, g, c = src.arrays(61, 47)
    plain = run("cjpeg", "-quality", "90", "-sample", "1x1", stdin=pnm(c))
    for turn in (0, 1, 2, 3, 4, 5, 6, 7, 8, 9):
        for order in "<>":
            exif = b"Exif\0\0" + (b"II*\0" if order == "<" else b"MM\0*") + struct.pack(order + "IHHHIHHI", 8, 1, tiff.ORIENTATION, 3, 1, turn, 0, 0)
            data = plain[:20] + b"\xff\xe1" + struct.pack(">H", len(exif) + 2) + exif + plain[20:]
            yield Sample(f"turned-{turn}.jpeg-{'IM'[order == '>']}.jpg", data, limits=JPEG, refs=JPEG_REFS, turn=turn, plain=plain)


def gifs(src):
    """Under the ending of another kind: a folder's pages are told by those that people scan to."""
    refs = ("pillow", "giftopnm")
    for w, h in [(61, 47), (37, 23), (1, 1), (2049, 21)]:
        for n, lace in itertools.product((2, 16, 100, 256), (0, 1)):
            image = Image.fromarray(src.arrays(w, h)[2]).quantize(n)
            image.putpalette([255] * 3 + image.getpalette()[3:])  # the paper's colour is there
            few, out, clear = np.asarray(image.convert("RGB")), io.BytesIO(), io.BytesIO()
            image.save(out, "GIF", interlace=lace)
            yield Sample(f"gif-pillow.{n}-{lace}.{w}x{h}.png", out.getvalue(), few, EXACT, refs)
            image.save(clear, "GIF", interlace=lace, transparency=1)
            want = np.where(np.asarray(image)[..., None] == 1, 255, few).astype(np.uint8)
            yield Sample(f"gif-pillow.{n}-clear-{lace}.{w}x{h}.png", clear.getvalue(), want, EXACT, refs[:1])
            if n <= 16:
                data = run(CONVERT, "-", "-interlace", ("none", "GIF")[lace], "gif:-", stdin=pnm(few))
                yield Sample(f"gif-magick.{n}-{lace}.{w}x{h}.png", data, few if n == 2 else None, EXACT, refs)  # it merges colours that are alike


def rle4(indices):
    """Rows from the bottom up: runs of one colour, and every other row as it is."""
    out = b""
    for y, row in enumerate(indices[::-1]):
        for at in range(0, len(row), 30):
            part = list(row[at:at + 30])
            if y % 2 or len(part) < 3:
                out += b"".join(bytes([1, value << 4]) for value in part)
            else:
                both = part + [0] * (-len(part) % 4)
                out += bytes([0, len(part)]) + bytes(a << 4 | b for a, b in zip(both[::2], both[1::2]))
        out += b"\0\0"
    return out + b"\0\1"


def top_down(data):
    start, = struct.unpack("<I", data[10:14])
    height, = struct.unpack("<i", data[22:26])
    stride = (len(data) - start) // height
    rows = [data[start + y * stride:start + (y + 1) * stride] for y in range(height)]
    return data[:22] + struct.pack("<i", -height) + data[26:start] + b"".join(rows[::-1])


def with_bitmap_data(data, compression, body):
    start, = struct.unpack("<I", data[10:14])
    return data[:2] + struct.pack("<I", start + len(body)) + data[6:30] + struct.pack("<II", compression, len(body)) + data[38:start] + body


def bmps(src):
    for w, h in [(61, 47), (37, 23), (1, 1), (2049, 21)]:
        white, g, c = src.arrays(w, h)
        for bits in (1, 4, 8, 24):
            few = c if bits == 24 else np.asarray(Image.fromarray(c).quantize(1 << bits).convert("RGB"))
            for system in ("-windows", "-os2"):
                data = run("ppmtobmp", system, f"-bpp={bits}", stdin=pnm(few))
                yield Sample(f"bmp-netpbm.{bits}{system}.{w}x{h}.bmp", data, few, EXACT, BMP_REFS)
                if system == "-windows":
                    yield Sample(f"bmp-netpbm.{bits}-topdown.{w}x{h}.bmp", top_down(data), few, EXACT, BMP_REFS)
        for label, image in (("1", Image.fromarray(white)), ("L", Image.fromarray(g)), ("RGB", Image.fromarray(c))):
            out = io.BytesIO()
            image.save(out, "BMP", dpi=(203.2, 101.6))
            yield Sample(f"bmp-pillow.{label}.{w}x{h}.bmp", out.getvalue(), np.asarray(image.convert("RGB")), EXACT, BMP_REFS[1:])
        few = np.asarray(Image.fromarray(c).quantize(16).convert("RGB"))
        raw = np.dstack((c, np.full((h, w), 255, np.uint8))).tobytes()
        magick = lambda *args: run(CONVERT, *args, stdin=raw if "rgba:-" in args else pnm(few))
        yield Sample(f"bmp-magick.rle8.{w}x{h}.bmp", magick("-", "-type", "palette", "-compress", "RLE", "bmp3:-"), few, EXACT, BMP_REFS)
        rgba = ["-size", f"{w}x{h}", "-depth", "8", "rgba:-"]
        for subtype in ("RGB565", "RGB555"):
            yield Sample(f"bmp-magick.{subtype}.{w}x{h}.bmp", magick(*rgba, "-alpha", "off", "-define", f"bmp:subtype={subtype}", "bmp:-"),
                         limits=DEEP, refs=("pillow", "convert"))
        yield Sample(f"bmp-magick.32.{w}x{h}.bmp", magick(*rgba, "-define", "bmp3:alpha=true", "bmp3:-"), c, EXACT, ("pillow", "convert"))
        out = io.BytesIO()
        paletted = Image.fromarray(few).quantize(16)
        whole = run("ppmtobmp", "-windows", "-bpp=4", stdin=pnm(few))
        start, = struct.unpack("<I", whole[10:14])
        colours = np.frombuffer(whole[54:start], np.uint8).reshape(-1, 4)[:, 2::-1]
        indices = (few[:, :, None, :] == colours[None, None]).all(3).argmax(2)
        yield Sample(f"bmp-rle4.16.{w}x{h}.bmp", with_bitmap_data(whole, 2, rle4(indices)), few, EXACT, ("pillow", "convert"))


def refused(src, work):
    white, g, c = src.arrays(61, 47)
    bits1 = [(tiff.BITS, 3, 1), (tiff.PHOTOMETRIC, 3, 0), (tiff.ROWS, 4, 47)]
    extension = int("1" + "0000001111" * 60, 2).to_bytes(76, "big")[1:]  # into uncompressed mode, at once
    yield "tiff-uncompressed-mode.g4.tif", wrapped(white, 4, [extension], bits1)
    yield "tiff-uncompressed-mode.g3.tif", wrapped(white, 3, [b"\0\x10" + extension], bits1 + [(292, 4, 3)])
    yield "tiff-float.tif", raw_tiff(work, (g / 255.0).astype(np.float32)[..., None], "minisblack")
    base = {name: data for name, data, _, _ in bases(src, work, 61, 47)}
    yield "tiff-lzma.tif", tiffcp(work, base["g8"], ["-c", "lzma"])
    yield "tiff-zstd.tif", tiffcp(work, base["g8"], ["-c", "zstd"])
    whole = run("ppmtobmp", "-windows", "-bpp=24", stdin=pnm(c))
    for number, body in ((4, run("cjpeg", stdin=pnm(c))), (5, run("pnmtopng", stdin=pnm(c)))):
        yield f"bmp-embedded-{number}.bmp", with_bitmap_data(whole[:28] + b"\0\0" + whole[30:], number, body)
