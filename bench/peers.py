#!/usr/bin/python3
"""Masks the same page natively with our core and with other libraries, all in memory and taking turns.

peers.py LIBRARY PAGES ROW...   rows: copy-native packed-peers peers fax
Prints lines "pair ROW DETAIL OURS THEIRS" in nanoseconds, tabs between.
"""
import ctypes
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import numpy

RUNS = 9
ours = ctypes.CDLL(sys.argv[1])
ours.BenchMakePage.restype = ctypes.c_void_p
ours.BenchPixels.restype = ctypes.c_void_p
libc = ctypes.CDLL(None)
libc.memcpy.argtypes = [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_size_t]
WIDTH, HEIGHT = 2480, 3508


class Page:
    def __init__(self, bits, keep):
        self.bits, self.keep = bits, keep
        self.page = ctypes.c_void_p(ours.BenchMakePage(WIDTH, HEIGHT, bits, int(keep)))
        size, stride = ctypes.c_uint64(), ctypes.c_uint64()
        self.data = ours.BenchPixels(self.page, ctypes.byref(size), ctypes.byref(stride))
        self.size, self.stride = size.value, stride.value
        rects = (ctypes.c_uint32 * 400)()
        count = ours.BenchRects(self.page, rects, 100)
        self.rects = [tuple(rects[4 * i:4 * i + 4]) for i in range(count)]
        self.target = numpy.zeros(self.size, numpy.uint8)
        self.address = ctypes.c_void_p(self.target.ctypes.data)

    def mask(self):
        ours.BenchMask(self.page, self.address)

    def memcpy(self):
        libc.memcpy(self.address, self.data, self.size)

    def array(self):
        """The pixels top-down, for the peers; their result is compared with ours."""
        raw = numpy.ctypeslib.as_array((ctypes.c_uint8 * self.size).from_address(self.data))
        return self.shaped(raw)

    def result(self):
        return self.shaped(self.target)

    def shaped(self, raw):
        rows = raw.reshape(HEIGHT, self.stride)[::-1]
        if self.bits == 1:
            return numpy.ascontiguousarray(numpy.unpackbits(rows, axis=1)[:, :WIDTH]) * 255
        if self.bits == 8:
            return numpy.ascontiguousarray(rows[:, :WIDTH])
        return numpy.ascontiguousarray(rows[:, :3 * WIDTH].reshape(HEIGHT, WIDTH, 3))


def timed(action, repeats=1):
    start = time.perf_counter_ns()
    for _ in range(repeats):
        action()
    return (time.perf_counter_ns() - start) / repeats


def compare(row, detail, mine, theirs, runs=RUNS, their_time=timed, repeats=1):
    mine()
    theirs()
    for run in range(runs):
        if run % 2 == 0:
            first, second = timed(mine, repeats), their_time(theirs, repeats)
        else:
            second, first = their_time(theirs, repeats), timed(mine, repeats)
        print("pair", row, detail, f"{first:.0f}", f"{second:.0f}", sep="\t")


def same(page, image, who):
    page.mask()
    if not numpy.array_equal(page.result(), image):
        sys.exit(f"peers.py: {who} does not mask the same pixels")


def opencv(page):
    import cv2
    cv2.setNumThreads(1)
    source = page.array()
    target = numpy.empty_like(source)
    white = (255, 255, 255)

    def ignore():
        numpy.copyto(target, source)
        for left, top, right, bottom in page.rects:
            cv2.rectangle(target, (left, top), (right - 1, bottom - 1), white, cv2.FILLED)

    # The way of its manual: a mask of the areas, and a copy under it.
    def keep():
        chosen = numpy.zeros((HEIGHT, WIDTH), numpy.uint8)
        for left, top, right, bottom in page.rects:
            cv2.rectangle(chosen, (left, top), (right - 1, bottom - 1), 255, cv2.FILLED)
        target.fill(255)
        cv2.copyTo(source, chosen, target)

    # And the fastest: the areas alone.
    def keep_areas():
        target.fill(255)
        for left, top, right, bottom in page.rects:
            target[top:bottom, left:right] = source[top:bottom, left:right]

    action = keep if page.keep else ignore
    action()
    same(page, target, "OpenCV")
    return [action, keep_areas] if page.keep else [action]


def pillow(page):
    from PIL import Image, ImageDraw
    source = Image.fromarray(page.array())
    if page.bits == 1:
        source = source.convert("1", dither=Image.NONE)
    white = 255 if source.mode != "RGB" else (255, 255, 255)

    def mask():
        if not page.keep:
            result = source.copy()
            draw = ImageDraw.Draw(result)
            for left, top, right, bottom in page.rects:
                draw.rectangle((left, top, right - 1, bottom - 1), fill=white)
            return result
        result = Image.new(source.mode, source.size, white)
        for rect in page.rects:
            result.paste(source.crop(rect), rect)
        return result

    image = numpy.asarray(mask())
    same(page, image.astype(numpy.uint8) * 255 if page.bits == 1 else image, "Pillow")
    return mask


class Vips:
    def __init__(self):
        self.lib = ctypes.CDLL("libvips.so.42")
        self.objects = ctypes.CDLL("libgobject-2.0.so.0")
        for name in ("vips_image_new_from_memory", "vips_image_write_to_memory", "vips_image_new_memory"):
            getattr(self.lib, name).restype = ctypes.c_void_p
        if self.lib.vips_init(b"bench") != 0:
            sys.exit("peers.py: libvips does not start")
        self.lib.vips_concurrency_set(1)

    def masker(self, page):
        pixels = page.array()
        bands = pixels.shape[2] if pixels.ndim == 3 else 1
        source = ctypes.c_void_p(self.lib.vips_image_new_from_memory(
            ctypes.c_void_p(pixels.ctypes.data), ctypes.c_size_t(pixels.nbytes), WIDTH, HEIGHT, bands, 0))
        ink = (ctypes.c_double * 3)(255, 255, 255)
        null = ctypes.c_void_p()

        def check(status):
            if status != 0:
                sys.exit("peers.py: an operation of libvips failed")

        def mask():
            made = ctypes.c_void_p()
            if page.keep:
                blank = ctypes.c_void_p()
                check(self.lib.vips_linear(source, ctypes.byref(blank), (ctypes.c_double * 1)(0),
                                           (ctypes.c_double * 1)(255), 1, b"uchar", 1, null))
                check(self.copy(blank, made))
                self.objects.g_object_unref(blank)
                for left, top, right, bottom in page.rects:
                    part = ctypes.c_void_p()
                    check(self.lib.vips_extract_area(source, ctypes.byref(part), left, top, right - left,
                                                     bottom - top, null))
                    check(self.lib.vips_draw_image(made, part, left, top, null))
                    self.objects.g_object_unref(part)
            else:
                check(self.copy(source, made))
                for left, top, right, bottom in page.rects:
                    check(self.lib.vips_draw_rect(made, ink, bands, left, top, right - left, bottom - top, b"fill", 1,
                                                  null))
            return made

        def run():
            self.objects.g_object_unref(mask())

        image = mask()
        size = ctypes.c_size_t()
        block = self.lib.vips_image_write_to_memory(image, ctypes.byref(size))
        same(page, numpy.frombuffer(ctypes.string_at(block, size.value), numpy.uint8).reshape(pixels.shape), "libvips")
        run.pixels = pixels  # libvips reads them in place
        return run

    def copy(self, image, made):
        made.value = self.lib.vips_image_new_memory()
        return self.lib.vips_image_write(image, made)


def imagemagick(page):
    """The time of one operation in memory: a run with nine of them less a run with one, by eight."""
    pixels = page.array()
    depth = ["-size", f"{WIDTH}x{HEIGHT}", "-depth", "8", "rgb:-" if pixels.ndim == 3 else "gray:-"]
    shapes = " ".join(f"rectangle {l},{t} {r - 1},{b - 1}" for l, t, r, b in page.rects)
    if page.keep:
        step = ["(", "-clone", "0", "-fill", "black", "-colorize", "100", "-fill", "white", "-draw", shapes, ")",
                "(", "-clone", "0", "-clone", "1", "-alpha", "off", "-compose", "CopyOpacity", "-composite",
                "-compose", "over", "-background", "white", "-flatten", ")", "-delete", "1,2"]
    else:
        step = ["(", "-clone", "0", "-fill", "white", "-draw", shapes, ")", "-delete", "1"]

    def elapsed(times):
        start = time.perf_counter_ns()
        subprocess.run(["/usr/bin/convert-im6.q16", "-limit", "thread", "1", *depth, *step * times, "null:"],
                       input=pixels.tobytes(), check=True)
        return time.perf_counter_ns() - start

    return lambda *_: max(elapsed(5) - elapsed(1), 1) / 4


def row_copy_native():
    for keep in (True, False):
        page = Page(24, keep)
        compare("copy-touched-native", "keep" if keep else "ignore", page.mask, page.memcpy, 15)


def row_packed_peers():
    for keep in (True, False):
        page = Page(1, keep)
        word = "keep" if keep else "ignore"
        for action in opencv(page):
            compare("packed-peers", f"OpenCV, {word}", page.mask, action, repeats=5)
        compare("packed-peers", f"Pillow, {word}", page.mask, pillow(page), repeats=5)


def row_peers():
    vips = Vips()
    for bits, name in ((8, "grey"), (24, "RGB")):
        for keep in (True, False):
            page = Page(bits, keep)
            word = f"{name} {'keep' if keep else 'ignore'}"
            for action, way in zip(opencv(page), (", mask" if keep else "", ", areas alone")):
                compare("peers-opencv", f"OpenCV, {word}{way}", page.mask, action, 15)
            compare("peers-vips", f"libvips, {word}", page.mask, vips.masker(page))
            compare("peers-magick", f"ImageMagick, {word}", page.mask, lambda: None, 5, imagemagick(page))


class Fax:
    """A G4 page in one strip, opened by libtiff."""

    def __init__(self, lib, path):
        self.lib, self.file = lib, ctypes.c_void_p(lib.TIFFOpen(path.encode(), b"r"))
        width, height = ctypes.c_uint32(), ctypes.c_uint32()
        lib.TIFFGetField(self.file, 256, ctypes.byref(width))
        lib.TIFFGetField(self.file, 257, ctypes.byref(height))
        self.width, self.height = width.value, height.value
        self.raw = numpy.zeros(lib.TIFFRawStripSize(self.file, 0), numpy.uint8)
        lib.TIFFReadRawStrip(self.file, 0, self.address(self.raw), ctypes.c_ssize_t(self.raw.size))
        size = (self.width + 7) // 8 * self.height
        self.mine, self.theirs = numpy.zeros(size, numpy.uint8), numpy.zeros(size, numpy.uint8)

    @staticmethod
    def address(array):
        return ctypes.c_void_p(array.ctypes.data)

    def decode(self):
        good = ours.BenchFax(self.address(self.raw), ctypes.c_uint64(self.raw.size), self.width, self.height,
                             self.address(self.mine))
        if good != 1:
            sys.exit("peers.py: a fax page is not decoded")

    def libtiff(self):
        self.lib.TIFFReadEncodedStrip(self.file, 0, self.address(self.theirs), ctypes.c_ssize_t(-1))


def row_fax():
    lib = ctypes.CDLL("libtiff.so.6")
    lib.TIFFOpen.restype = ctypes.c_void_p
    lib.TIFFRawStripSize.restype = lib.TIFFReadRawStrip.restype = lib.TIFFReadEncodedStrip.restype = ctypes.c_ssize_t
    for path in sorted(Path(sys.argv[2]).glob("ccitt*.tif")):
        with tempfile.NamedTemporaryFile(suffix=".tif") as one:
            subprocess.run(["tiffcp", "-c", "g4", "-r", "100000", path, one.name], check=True)
            page = Fax(lib, one.name)
            compare("fax", path.stem, page.decode, page.libtiff, 15, repeats=5)
            if not numpy.array_equal(page.mine, page.theirs):
                sys.exit(f"peers.py: {path.name} is decoded otherwise by libtiff")


for argument in sys.argv[3:]:
    {"copy-native": row_copy_native, "packed-peers": row_packed_peers, "peers": row_peers, "fax": row_fax}[argument]()
