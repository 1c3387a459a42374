"""Pages by the encoders of libtiff, netpbm, ImageMagick, Pillow and libjpeg, of real sources, each with what it shows."""
import io
import itertools
import os
import struct
import subprocess
from dataclasses import dataclass, field

import numpy as np
from PIL import Image

import tiff
from decode import DECODERS, file_dpi, on_paper, run, tiff_dpi
from tiff import Tiff, without_end_of_block

EXACT, DEEP, JPEG, SPREAD = (0, 0), (1, 1), (2, 2), (255, 2)  # most levels of one sample, and in the mean
TIFF_REFS, CMYK_REFS = ("pillow", "tiff2rgba", "convert"), ("pillow", "tiff2rgba")
CONVERT = "convert-im6.q16"
DECODERS["convert"] = lambda path: np.asarray(Image.open(io.BytesIO(
    run(CONVERT, path, "-background", "white", "-alpha", "remove", "-depth", "8", "ppm:-"))).convert("RGB"))


@dataclass
class Sample:
    name: str  # kind.details.extension
    data: bytes
    want: np.ndarray = None  # of lossless encoders: what they were given
    limits: tuple = EXACT
    refs: tuple = TIFF_REFS
    turn: int = 1
    plain: bytes = None  # the same pixels in a file for the references
    refused: bool = False
    pages: list = field(default_factory=list)  # of a file with several: what each shows


class Sources:
    """The same pictures in any size."""

    def __init__(self, pages):
        self.folder = pages
        self.fax = Image.open(os.path.join(pages, "ccitt4.tif")).convert("L")
        self.grey = Image.open("/usr/share/jbigkit-testdata/sandra.pgm").convert("L")
        self.rose = Image.open(io.BytesIO(run(CONVERT, "rose:", "-resize", "400%", "ppm:-")))

    def arrays(self, w, h):
        rose = self.rose if w < 180 and h < 120 else self.rose.resize((100 + w, max(60 + h, w * 2 // 3)), 3)
        rose = rose.crop((100, 60, 100 + w, 60 + h))
        black = np.asarray(self.fax.crop((200, 300, 200 + w, 300 + h))) > 127
        return black, np.asarray(self.grey.resize((w, h), 3)), np.asarray(rose)


def grey3(a):
    return np.repeat(np.asarray(a)[..., None], 3, 2).astype(np.uint8)


def pnm(a, most=255):
    kind, channels = (b"P6", 3) if a.ndim == 3 else (b"P5", 1)
    return kind + b"\n%d %d\n%d\n" % (a.shape[1], a.shape[0], most) + a.astype(">u2" if most > 255 else "u1").tobytes()


def pbm(white):
    return b"P4\n%d %d\n" % white.shape[::-1] + np.packbits(~white, axis=1).tobytes()


def raw_tiff(work, a, photometric, alpha=None):
    with open(work + "/raw", "wb") as file:
        file.write(a.tobytes())
    run("raw2tiff", "-L", "-w", str(a.shape[1]), "-l", str(a.shape[0]), "-b", str(a.shape[2]), "-p", photometric, "-d",
        {1: "byte", 2: "short", 4: "float"}[a.itemsize], work + "/raw", work + "/raw.tif")
    if alpha is not None:
        run("tiffset", "-s", "338", *(["1"] if alpha != "none" else []), str(alpha), work + "/raw.tif")
    with open(work + "/raw.tif", "rb") as file:
        return file.read()


def bases(src, work, w, h):
    """name -> (TIFF of raw pixels, what it shows, limits, references)"""
    white, g, c = src.arrays(w, h)
    deep = np.clip(g.astype(int) * 257 + (np.arange(g.size).reshape(g.shape) * 37 % 200) - 100, 0, 65535).astype(np.uint16)
    deep3 = np.clip(c.astype(int) * 257 + (np.arange(c.size).reshape(c.shape) * 37 % 200) - 100, 0, 65535).astype(np.uint16)
    alpha = np.tile(np.linspace(0, 255, w).astype(np.uint8), (h, 1))
    premul, gpremul = ((p.astype(int) * alpha[..., None] + 127) // 255 for p in (c, g[..., None]))
    to = lambda *args, data: run("pamtotiff", "-xresolution=204", "-yresolution=196", *args, stdin=data)
    stack = lambda *parts, kind=np.uint8: np.ascontiguousarray(np.dstack(parts).astype(kind))
    full = np.full((h, w), 255)
    yield "b1", to("-minisblack", data=pbm(white)), grey3(white * 255), EXACT
    yield "w1", to("-miniswhite", data=pbm(white)), grey3(white * 255), EXACT
    for bits in (2, 4, 8):
        most = (1 << bits) - 1
        levels = (g.astype(int) * most + 127) // 255
        for name, option in (("g", "-minisblack"), ("i", "-miniswhite")):
            yield f"{name}{bits}", to(option, data=pnm(levels, most)), grey3(levels * 255 // most), EXACT
    for bits in (1, 2, 4, 8):
        colours = np.asarray(Image.fromarray(c).quantize(1 << bits).convert("RGB"))
        yield f"p{bits}", to("-color", f"-indexbits={bits}", data=pnm(colours)), colours, EXACT
    yield "g16", raw_tiff(work, deep[..., None], "minisblack"), grey3(g), DEEP
    yield "i16", raw_tiff(work, 65535 - deep[..., None], "miniswhite"), grey3(g), DEEP
    yield "rgb8", to("-color", "-truecolor", data=pnm(c)), c, EXACT
    yield "rgb16", to("-color", "-truecolor", data=pnm(deep3, 65535)), c, DEEP
    yield "ga8", raw_tiff(work, stack(g, alpha), "minisblack", 2), on_paper(grey3(g), alpha), DEEP
    yield "ga8assoc", raw_tiff(work, stack(gpremul, alpha), "minisblack", 1), on_paper(grey3(g), alpha), DEEP
    yield "rgba8", raw_tiff(work, stack(c, alpha), "rgb", 2), on_paper(c, alpha), EXACT
    yield "rgba8assoc", raw_tiff(work, stack(premul, alpha), "rgb", 1), np.uint8(premul + 255 - alpha[..., None]), EXACT
    yield "rgbx8", raw_tiff(work, stack(c, full), "rgb", 0), c, EXACT
    yield "rgba16", raw_tiff(work, stack(deep3, alpha * 257, kind=np.uint16), "rgb", 2), on_paper(c, alpha), DEEP
    ink = 255 - stack(c, np.maximum(g, 40)).astype(int)
    yield "cmyk8", raw_tiff(work, ink.astype(np.uint8), "cmyk"), \
        (((255 - ink[..., :3]) * (255 - ink[..., 3:]) + 127) // 255).astype(np.uint8), DEEP


def tiffcp_variants(name, channels):
    bits = 1 if name in ("b1", "w1") else 8 if name[-1] not in "124" or name.endswith("rgbx") else 4
    codes = [["none"], ["packbits"], ["lzw"], ["zip"]]
    if bits == 8 and not name.startswith("p"):
        codes += [["lzw:2"], ["zip:2"]]
    if bits == 1:
        codes += [["g3:1d"], ["g3:2d"], ["g3:1d:fill"], ["g3:2d:fill"], ["g4"], ["g4"]]
    if name in ("g8", "rgb8"):
        codes += [["jpeg"], ["jpeg:r"]]
    layouts = [["-s", "-r", "9999"], ["-s", "-r", "16"], ["-t", "-w", "32", "-l", "16"]]
    orders = [["-L"], ["-B"]] + ([["-B", "-f", "lsb2msb"]] if bits == 1 else [])
    planes = [["-p", "contig"], ["-p", "separate"]] if channels > 1 and "16" not in name else [[]]
    for code, layout, order, plane in itertools.product(codes, layouts, orders, planes):
        if not (code[0] == "jpeg" and plane[-1:] == ["separate"]):
            yield ["-c", *code, *layout, *order, *plane]


def tiffcp(work, data, args):
    with open(work + "/in.tif", "wb") as file:
        file.write(data)
    run("tiffcp", *args, work + "/in.tif", work + "/out.tif")
    with open(work + "/out.tif", "rb") as file:
        return file.read()


def made_by_tiffcp(src, work, long):
    number = 0
    for w, h in [(61, 47), (37, 23), (1, 1), (17, 99), (2049, 21)]:
        for name, data, want, limits in bases(src, work, w, h):
            for args in tiffcp_variants(name, Tiff(data).get(tiff.SAMPLES, default=[1])[0]):
                number += 1
                if not long and number % (11 if w == 61 else 67):
                    continue
                jpeg = args[1].startswith("jpeg")
                limit = limits if not jpeg else SPREAD if name == "rgb8" and args[1] == "jpeg" else JPEG
                label = "".join(args).replace("-", "").replace(":", "")
                refs = CMYK_REFS if name == "cmyk8" else TIFF_REFS
                yield Sample(f"tiff-{name}.{label}.{w}x{h}.tif", tiffcp(work, data, args), None if jpeg else want, limit, refs)


def edits(src, work, long):
    """Tags as scanners and old software write them; the pixels stay."""
    base = {name: (data, want, limits) for name, data, want, limits in bases(src, work, 61, 47)}
    resolutions = {"inch": (2, 300, 300), "cm": (3, 80, 80), "none": (1, 4, 3), "axes": (2, 204, 98), "odd": (2, 0, 150)}
    one = ["-s", "-r", "9999"]
    table = [("rows-left-out", "b1", ["-c", "g4"] + one, lambda t: t.drop(tiff.ROWS)),
             ("rows-larger", "g8", ["-c", "lzw"] + one, lambda t: t.set(tiff.ROWS, 4, 0xFFFFFFFF)),
             ("rows-larger-short", "rgb8", ["-c", "zip"] + one, lambda t: t.set(tiff.ROWS, 3, 4711)),
             ("counts-left-out", "g8", ["-c", "none"] + one, lambda t: t.drop(tiff.COUNTS)),
             ("counts-zero", "rgb8", ["-c", "none"] + one, lambda t: setattr(t.pages[0], "counts", [0])),
             ("one-bits-value", "rgb8", ["-c", "lzw"], lambda t: t.set(tiff.BITS, 3, 8)),
             ("one-bits-value-16", "rgb16", ["-c", "zip", "-B"], lambda t: t.set(tiff.BITS, 3, 16)),
             ("old-deflate", "g8", ["-c", "zip", "-r", "8"], lambda t: t.set(tiff.COMPRESSION, 3, 32946)),
             ("old-deflate-predictor", "rgb16", ["-c", "zip:2", "-r", "8"], lambda t: t.set(tiff.COMPRESSION, 3, 32946)),
             ("samples-left-out", "b1", ["-c", "packbits"], lambda t: t.drop(tiff.SAMPLES, tiff.PLANAR, tiff.ORIENTATION)),
             ("bits-left-out", "b1", ["-c", "none"], lambda t: t.drop(tiff.BITS, tiff.COMPRESSION)),
             ("trailing-bytes", "g8", ["-c", "packbits"], lambda t: setattr(t, "tail", bytes(range(256)) * 3)),
             ("no-end-of-block", "b1", ["-c", "g4", "-r", "8"], lambda t: edit_pieces(t, without_end_of_block)),
             ("no-end-of-block", "w1", ["-c", "g4"] + one, lambda t: edit_pieces(t, without_end_of_block)),
             ("after-end-of-block", "w1", ["-c", "g4", "-r", "16"], lambda t: edit_pieces(t, lambda p: p + b"\x5a" * 9)),
             ("trailing-in-strip", "g8", ["-c", "lzw", "-r", "16"], lambda t: edit_pieces(t, lambda p: p + b"\0\xff" * 3)),
             ("trailing-in-strip", "rgb8", ["-c", "zip", "-r", "16"], lambda t: edit_pieces(t, lambda p: p + b"\0\xff" * 3))]
    for label, (unit, x, y) in resolutions.items():
        edit = lambda t, u=unit, x=x, y=y: t.set(tiff.UNIT, 3, u).set(tiff.X_RES, 5, (x, 1)).set(tiff.Y_RES, 5, (y, 1))
        table += [("resolution-" + label, name, ["-c", "lzw"], edit) for name in ("b1", "rgb8")[:2 if long else 1]]
    table.append(("resolution-left-out", "g4", ["-c", "lzw"], lambda t: t.drop(tiff.UNIT, tiff.X_RES, tiff.Y_RES)))
    for label, name, args, edit in table:
        data, want, limits = base[name]
        file = Tiff(tiffcp(work, data, args))
        edit(file)
        yield Sample(f"edited-{label}.{name}.tif", file.save(), want, limits)
    for turn, (name, code) in itertools.product((1, 2, 3, 4, 5, 6, 7, 8, 0, 9), (("w1", "g4"), ("rgb8", "lzw"), ("p4", "none"))):
        data, want, limits = base[name]
        file = Tiff(tiffcp(work, data, ["-c", code, "-r", "8"])).set(tiff.X_RES, 5, (204, 1)).set(tiff.Y_RES, 5, (98, 1))
        turned = Tiff(file.save()).set(tiff.ORIENTATION, 3, turn).save()
        yield Sample(f"turned-{turn}.{name}.tif", turned, want, limits, turn=turn, plain=file.save())
    first, second = (tiffcp(work, base[name][0], ["-c", "g4", "-r", "8"]) for name in ("b1", "w1"))
    both = Tiff(first)
    both.pages += Tiff(second).pages
    yield Sample("pages-2.g4.tif", both.save(), pages=[base["b1"][1], base["w1"][1]])


def edit_pieces(file, edit):
    for page in file.pages:
        page.pieces = [edit(piece) for piece in page.pieces]


def wrapped(array, compression, strips, tags):
    """A TIFF around streams of other encoders."""
    file = Tiff(order="<")
    file.set(tiff.WIDTH, 4, array.shape[1]).set(tiff.HEIGHT, 4, array.shape[0]).set(tiff.COMPRESSION, 3, compression)
    file.set(tiff.X_RES, 5, (204, 1)).set(tiff.Y_RES, 5, (196, 1)).set(tiff.COUNTS, 4, 0)
    for tag, kind, *values in tags:
        file.set(tag, kind, *values)
    file.pages[0].pieces = strips
    return file.save()


def other_tiffs(src, work, long):
    for w, h in [(61, 47), (17, 99), (1, 1), (2049, 21)][:4 if long else 1]:
        white, g, c = src.arrays(w, h)
        images = {"b1": Image.fromarray(white), "g8": Image.fromarray(g), "rgb8": Image.fromarray(c),
                  "p8": Image.fromarray(c).quantize(200), "cmyk8": Image.fromarray(c).convert("CMYK"),
                  "rgba8": Image.fromarray(np.dstack((c, g)))}
        codes = {"b1": ("raw", "tiff_ccitt", "group3", "group4", "tiff_raw_16", "packbits", "tiff_deflate"),
                 "g8": ("tiff_lzw", "tiff_deflate", "tiff_adobe_deflate", "jpeg"), "rgb8": ("raw", "tiff_deflate", "jpeg")}
        for name, image in images.items():
            for code, tags in itertools.product(codes.get(name, ("tiff_lzw", "packbits")), ({}, {317: 2})):
                if 317 in tags and ("lzw" not in code and "deflate" not in code or name in ("b1", "p8")):
                    continue
                out = io.BytesIO()
                image.save(out, "TIFF", compression=code, tiffinfo=tags, dpi=(204, 196))
                label = code + "".join(f"-{tag}" for tag in tags)
                yield Sample(f"pillow-{name}.{label}.{w}x{h}.tif", out.getvalue(), grey3(white * 255) if name == "b1" else None, limits=SPREAD if code == "jpeg" else DEEP
                             if name in ("cmyk8", "rgba8") else EXACT, refs=("tiff2rgba",) if name != "cmyk8" else ("convert", "tiff2rgba"))
        for name, array, options in [
                (name, array, [*options, "-compress", code])
                for name, array, codes in (("b1", white, ("Fax", "Group4", "RLE", "LZW")), ("g8", g, ("LZW", "Zip", "JPEG")),
                                           ("rgb8", c, ("LZW", "Zip", "JPEG", "None", "RLE")))
                for code in codes
                for options in (["-endian", "MSB"], ["-endian", "LSB", "-define", "tiff:rows-per-strip=8"],
                                ["-define", "tiff:tile-geometry=32x16"], ["-interlace", "plane"], ["-depth", "16"], ["-depth", "16", "-interlace", "plane"])
                if not (code == "JPEG" and ("16" in options or "plane" in options)) and not (name == "b1" and "16" in options)]:
            source = pbm(array) if name == "b1" else pnm(array)
            data = run(CONVERT, "-density", "204x196", "-units", "PixelsPerInch", "-[0]", *options, "tif:-", stdin=source)
            want = None if "JPEG" in options else grey3(array * 255 if name == "b1" else array) if name != "rgb8" else array
            limits = SPREAD if "JPEG" in options else DEEP
            yield Sample(f"magick-{name}.{''.join(options).replace('-', '').replace(':', '')}.{w}x{h}.tif", data, want, limits)
        for options in (["-g3"], ["-g3", "-2d"], ["-g3", "-fill"], ["-g3", "-2d", "-fill"], ["-g4"], ["-lzw"], ["-packbits"],
                        ["-flate"], ["-g3", "-2d", "-rowsperstrip=8"]):
            data = run("pamtotiff", "-miniswhite", "-xresolution=204", "-yresolution=196", *options, stdin=pbm(white))
            yield Sample(f"netpbm-b1.{''.join(options).replace('-', '')}.{w}x{h}.tif", data, grey3(white * 255))
        bits1 = [(tiff.BITS, 3, 1), (tiff.PHOTOMETRIC, 3, 0), (tiff.ROWS, 4, h)]
        for label, options in (("plain", []), ("align8", ["-align8"]), ("reversed", ["-reversebits"])):
            data = run("pbmtog3", "-nofixedwidth", *options, stdin=pbm(white))
            fill = [(tiff.FILL, 3, 2)] if label == "reversed" else []
            yield Sample(f"netpbm-g3stream.{label}.{w}x{h}.tif", wrapped(white, 3, [data], bits1 + fill), grey3(white * 255))
            with open(work + "/fax.g3", "wb") as file:
                file.write(data)
        for label, sampling in (("444", "1x1"), ("422", "2x1"), ("420", "2x2"), ("grey", None)):
            whole = run("cjpeg", "-quality", "90", *(["-sample", sampling] if sampling else ["-grayscale"]), stdin=pnm(c))
            tags = [(tiff.BITS, 3, *[8] * (3 if sampling else 1)), (tiff.PHOTOMETRIC, 3, 6 if sampling else 1),
                    (tiff.SAMPLES, 3, 3 if sampling else 1), (tiff.ROWS, 4, h)]
            tags += [(530, 3, *map(int, sampling.split("x")))] if sampling else []
            limits = JPEG if sampling in (None, "1x1") else SPREAD
            yield Sample(f"wrapped-jpeg.{label}.{w}x{h}.tif", wrapped(c, 7, [whole], tags), limits=limits)
            tables, rest = split_tables(whole)
            apart = wrapped(c, 7, [rest], tags + [(tiff.TABLES, 7, *tables)])
            yield Sample(f"wrapped-jpeg.{label}-apart.{w}x{h}.tif", apart, limits=limits)
    for page in ("ccitt1.tif", "ccitt7.tif", "mx.tif")[:3 if long else 1]:  # whole pages, as they come from a fax
        with open(os.path.join(src.folder, page), "rb") as file:
            data = file.read()
        for args in (["-c", "g3:2d"], ["-c", "g4", "-r", "64"]):
            yield Sample(f"fax-{page[:-4]}.{''.join(args[1:])}.tif".replace(":", ""), tiffcp(work, data, args))


def split_tables(jpeg):
    at, tables, rest = 2, b"\xff\xd8", b"\xff\xd8"
    while jpeg[at + 1] != 0xDA:
        end = at + 2 + struct.unpack(">H", jpeg[at + 2:at + 4])[0]
        if jpeg[at + 1] in (0xDB, 0xC4):
            tables += jpeg[at:end]
        else:
            rest += jpeg[at:end]
        at = end
    return tables + b"\xff\xd9", rest + jpeg[at:]
