"""What a page shows, by programs that did not write it, and the masking of it by a formula of its own."""
import io
import struct
import subprocess
from fractions import Fraction

import numpy as np
from PIL import Image

import tiff

Image.MAX_IMAGE_PIXELS = None


def run(*command, stdin=b""):
    done = subprocess.run(command, input=stdin, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if done.returncode != 0 and not done.stdout:
        raise RuntimeError(f"{command[0]}: {done.stderr.decode(errors='replace').strip()[-200:]}")
    return done.stdout


def on_paper(colour, alpha):
    alpha = alpha.astype(int)[..., None]
    return ((colour.astype(int) * alpha + 255 * (255 - alpha) + 127) // 255).astype(np.uint8)


def rgb_of(image):
    if image.mode.startswith("I"):
        grey = (np.asarray(image).astype(np.int64) * 255 + 32767) // 65535
        return np.repeat(grey[..., None], 3, 2).astype(np.uint8)
    if image.mode == "CMYK":
        ink = 255 - np.asarray(image).astype(int)
        return ((ink[..., :3] * ink[..., 3:] + 127) // 255).astype(np.uint8)
    if image.mode in ("LA", "PA", "RGBA") or "transparency" in image.info:
        pixels = np.asarray(image.convert("RGBA"))
        return on_paper(pixels[..., :3], pixels[..., 3])
    return np.asarray(image.convert("RGB"))


def pillow(path):
    return rgb_of(Image.open(path))


def tiff2rgba(path):
    out = path + ".rgba"
    run("tiff2rgba", "-c", "none", path, out)
    pixels = np.asarray(Image.open(out)).astype(int)
    return on_paper(pixels[..., :3], pixels[..., 3])


def netpbm(program):
    return lambda path: rgb_of(Image.open(io.BytesIO(run(program, path))))


DECODERS = {"pillow": pillow, "tiff2rgba": tiff2rgba, "djpeg": netpbm("djpeg"), "pngtopam": netpbm("pngtopam"),
            "bmptopnm": netpbm("bmptopnm"), "giftopnm": netpbm("giftopnm")}
TURNS = {2: np.fliplr, 3: lambda a: a[::-1, ::-1], 4: np.flipud, 5: lambda a: a.transpose(1, 0, 2),
         6: lambda a: np.rot90(a, -1), 7: lambda a: a[::-1, ::-1].transpose(1, 0, 2), 8: np.rot90}


def tiff_dpi(file, page=None):
    scale = {1: 0, 2: 1, 3: Fraction(254, 100)}[file.get(tiff.UNIT, page, [2])[0]]
    values = [file.get(tag, page, [(0, 1)])[0] for tag in (tiff.X_RES, tiff.Y_RES)]
    return [Fraction(*value) * scale if value[1] else 0 for value in values]


def file_dpi(data):
    """Dots per inch as the file's own fields say, 0 for none."""
    per_metre = Fraction(254, 10000)
    if data[:2] in (b"II", b"MM"):
        return tiff_dpi(tiff.Tiff(data))
    if data[:2] == b"BM":
        if struct.unpack("<I", data[14:18])[0] == 12:
            return [0, 0]
        return [value * per_metre for value in struct.unpack("<ii", data[38:46])]
    if data[:2] == b"\x89P":
        at = data.find(b"pHYs")
        return [v * per_metre for v in struct.unpack(">II", data[at + 4:at + 12])] if at > 0 and data[at + 12] == 1 else [0, 0]
    if data[:3] == b"GIF":
        return [0, 0]
    at = data.find(b"JFIF\0")
    scale = {1: 1, 2: Fraction(254, 100)}.get(data[at + 7], 0) if at > 0 else 0
    return [v * scale for v in struct.unpack(">HH", data[at + 8:at + 12])] if scale else [0, 0]


def effective(dpi):
    """The resolution to mask by: one that says nothing takes the other axis', both 200; whole within a dot per metre."""
    dpi = [Fraction(round(v)) if abs(v - round(v)) <= Fraction(26, 1000) else Fraction(v) for v in dpi]
    dpi = [v if 10 <= v <= 10000 else 0 for v in dpi]
    return [dpi[0] or dpi[1] or 200, dpi[1] or dpi[0] or 200]


def covered(shape, dpi, areas):
    """Pixels that an area touches; areas in tenths of a millimetre."""
    inside = np.zeros(shape[:2], bool)
    for left, top, right, bottom in areas:
        x0, y0 = (int(v * d // 254) for v, d in ((left, dpi[0]), (top, dpi[1])))
        x1, y1 = (int(-(-v * d // 254)) for v, d in ((right, dpi[0]), (bottom, dpi[1])))
        inside[y0:y1, x0:x1] = True
    return inside
