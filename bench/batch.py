#!/usr/bin/python3
"""Masks a folder of pages with another program: batch.py pillow|vips|magick IN OUT tif|png NUMBERS...

NUMBERS are the areas' pixels, four for each: left, top, right, bottom. They are left out. Uses both processors.
"""
import ctypes
import os
import subprocess
import sys
from concurrent.futures import ProcessPoolExecutor, ThreadPoolExecutor

peer, folder, out, extension = sys.argv[1:5]
numbers = [int(n) for n in sys.argv[5:]]
rects = [numbers[i:i + 4] for i in range(0, len(numbers), 4)]


def with_pillow(name):
    from PIL import Image, ImageDraw
    image = Image.open(os.path.join(folder, name))
    draw = ImageDraw.Draw(image)
    white = 255 if image.mode != "RGB" else (255, 255, 255)
    for left, top, right, bottom in rects:
        draw.rectangle((left, top, right - 1, bottom - 1), fill=white)
    image.save(os.path.join(out, name))  # TIFF raw, PNG at zlib's level 6: its defaults


def with_vips(names):
    lib = ctypes.CDLL("libvips.so.42")
    objects = ctypes.CDLL("libgobject-2.0.so.0")
    lib.vips_image_new_from_file.restype = lib.vips_image_new_memory.restype = ctypes.c_void_p
    lib.vips_init(b"batch")
    null = ctypes.c_void_p()

    def mask(name):
        source = ctypes.c_void_p(lib.vips_image_new_from_file(os.path.join(folder, name).encode(), null))
        made = ctypes.c_void_p(lib.vips_image_new_memory())
        bands = lib.vips_image_get_bands(source)
        ink = (ctypes.c_double * 3)(255, 255, 255)
        status = lib.vips_image_write(source, made)
        for left, top, right, bottom in rects:
            status |= lib.vips_draw_rect(made, ink, bands, left, top, right - left, bottom - top, b"fill", 1, null)
        status |= lib.vips_image_write_to_file(made, os.path.join(out, name).encode(), null)
        objects.g_object_unref(made)
        objects.g_object_unref(source)
        if status != 0:
            sys.exit("batch.py: libvips failed")

    with ThreadPoolExecutor(2) as pool:
        list(pool.map(mask, names))


def with_magick(names):
    # One process for half of the pages each; mogrify has the start-up once.
    shapes = " ".join(f"rectangle {l},{t} {r - 1},{b - 1}" for l, t, r, b in rects)
    os.environ["MAGICK_THREAD_LIMIT"] = "1"  # two processes take both processors
    parts = [names[0::2], names[1::2]]
    running = [subprocess.Popen(["/usr/bin/mogrify-im6.q16", "-path", out, "-fill", "white", "-draw", shapes,
                                 *(os.path.join(folder, name) for name in part)]) for part in parts]
    if any(process.wait() for process in running):
        sys.exit("batch.py: ImageMagick failed")


names = sorted(name for name in os.listdir(folder) if name.endswith(extension))
if peer == "pillow":
    with ProcessPoolExecutor(2) as pool:
        list(pool.map(with_pillow, names, chunksize=10))
elif peer == "vips":
    with_vips(names)
else:
    with_magick(names)
