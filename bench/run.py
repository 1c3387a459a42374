#!/usr/bin/python3
"""Runs the measurements, prints the table, writes results.json and the plot. Called by scripts/bench.

run.py WINDOWS_BUILD NATIVE_LIBRARY OUT WINE PAGES [ROW...]
"""
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import plot

here = Path(__file__).parent
build, library, out, wine, pages = Path(sys.argv[1]), sys.argv[2], Path(sys.argv[3]), sys.argv[4], Path(sys.argv[5])
wanted = sys.argv[6:]

# Row: program, its argument, text, target, and how the figure comes from a pair (ours, limit).
# "most": ours / limit is at most the target. "faster": limit / ours is at least the target.
ROWS = {
    "copy-fresh": ("windows", "copy", "masked copy into a fresh block, RGB 300 dpi A4", "most", 1.15),
    "copy-touched": ("windows", "copy", "the same into a touched block, under Wine", "most", 1.5),
    "copy-touched-native": ("native", "copy-native", "the same into a touched block, natively", "most", 1.25),
    "packed-copy": ("windows", "packed", "1-bit page kept packed, to memcpy", "most", 2),
    "packed-peers": ("native", "packed-peers", "1-bit page kept packed, to peers", "faster", 5),
    "peers-opencv": ("native", "peers", "masking grey and RGB, to OpenCV", "faster", 1),
    "peers-vips": ("native", "peers", "masking grey and RGB, to libvips", "faster", 10),
    "peers-magick": ("native", "peers", "masking grey and RGB, to ImageMagick", "faster", 10),
    "batch": ("batch", "batch", "zonhost mask over 100 pages", "faster", 1),
    "decode": ("decode", "decode", "decoding a 600 dpi A4 page, to the first release", "most", 1.05),
    "fax": ("native", "fax", "decoding G4 pages natively, to libtiff", "faster", 1),
    "query": ("windows", "query", "query export, to a bare mutex", "most", 1.1),
    "query-scatter": ("windows", "query", "what that measurement scatters by", "most", None),
    "enumerate": ("windows", "enumerate", "enumerating 10,000 sets, per set", "most", 1.2),
    "settings": ("windows", "settings", "10,000 sets of 10 areas, to the bare calls", "most", 1.5),
    "import": ("windows", "import", "importing areas, to parsing their file", "most", 2),
    "import-growth": ("windows", "import", "its growth, as an exponent", "value-most", 1.1),
    "import-refused": ("windows", "import-refused", "refusing too many areas, to parsing their file", "most", 1.5),
    "list": ("windows", "list", "listing 50,000 sets, to SAInit and a query", "most", 1.2),
    "scale": ("windows", "scale", "page view scaling, to StretchDIBits HALFTONE", "faster", 2),
    "scale-quality": ("windows", "scale", "its PSNR beyond HALFTONE's, dB", "value-least", 6),
    "repaint": ("windows", "repaint", "repaint and dragging, ms", "most", 16),
    "repaint-part": ("windows", "repaint", "part of the window that dragging touches", "value-most", 0.05),
    "turn": ("windows", "turn", "turning to a 300 dpi page, to decoding and scaling", "most", 1.3),
    "dialog-manage": ("windows", "dialogs", "opening Manage Area Sets, to a bare list", "most", 2),
    "dialog-configure": ("windows", "dialogs", "opening Configure Area Set, to a bare list", "most", 2),
    "load": ("windows", "load", "loading the DLL, to an empty one", "most", 1.5),
    "size": ("windows", "load", "size of Zonwick.dll, KB", "value-most", 600),
}
# Tenths of a millimetre, left out; and the pixels of a 204 x 196 dpi page that they touch.
AREAS = [(200, 100, 1900, 350), (200, 450, 1000, 800), (203, 1207, 1897, 2003), (200, 2700, 1900, 2900)]
PEERS = {"ImageMagick": "magick", "Pillow": "pillow", "libvips": "vips"}


def fail(text):
    sys.exit(f"bench: {text}")


def lines_of(command, **options):
    # Into files: the services that the first Windows program starts would hold a pipe open.
    with tempfile.TemporaryFile("w+") as output, tempfile.TemporaryFile("w+") as errors:
        done = subprocess.run([str(part) for part in command], stdout=output, stderr=errors,
                              stdin=subprocess.DEVNULL, timeout=900, **options)
        output.seek(0)
        errors.seek(0)
        if done.returncode != 0:
            fail(f"{' '.join(map(str, command[:3]))} failed: {errors.read().strip()[-400:]}")
        return [line.split("\t") for line in output.read().replace("\r", "").splitlines()]


def make_pages(extension):
    """100 scanned fax pages of 1 bit, TIFF with G4 or PNG."""
    folder = out / f"pages-{extension}"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    sources = sorted(pages.glob("ccitt*.tif"))
    for number in range(100):
        target = folder / f"page{number:03}.{extension}"
        if extension == "tif":
            shutil.copy(sources[number % len(sources)], target)
        else:
            from PIL import Image
            Image.open(sources[number % len(sources)]).save(target)
    return folder


def pixels_of(area):
    def touched(begin, end, dpi):
        return int(begin * dpi / 254), -int(-end * dpi // 254)
    left, right = touched(area[0], area[2], 204)
    top, bottom = touched(area[1], area[3], 196)
    return left, top, right, bottom


def batch():
    settings = out / "batch.json"
    rect = ("Position:left", "Position:top", "Position:right", "Position:bottom")
    settings.write_text(json.dumps({"0x00000001": {
        "Name": "Bench", "Flags": 0x10000000, "DisplayRect": dict(zip(rect, (0, 0, 2100, 2970))),
        "Rect": {str(i): dict(zip(rect, area)) for i, area in enumerate(AREAS)}}}))
    numbers = [str(n) for area in AREAS for n in pixels_of(area)]
    for extension in ("tif", "png"):
        folder = make_pages(extension)

        def ours():
            return [wine, build / "bin" / "zonhost.exe", "mask", "--settings", f"Z:{settings}", "--set", "Bench",
                    "--format", extension, "--out", f"Z:{out / 'masked'}", f"Z:{folder}"]

        def theirs(peer):
            return [sys.executable, here / "batch.py", peer, folder, out / "masked", extension, *numbers]

        def seconds(command):
            shutil.rmtree(out / "masked", ignore_errors=True)
            (out / "masked").mkdir()
            start = time.perf_counter_ns()
            lines_of(command)
            elapsed = time.perf_counter_ns() - start
            if len(list((out / "masked").glob("page*"))) != 100:
                fail(f"{command[:4]} did not write 100 pages")
            return elapsed

        for run in range(6):
            mine = seconds(ours())
            if run == 0:
                continue  # warms the caches
            for name, peer in PEERS.items():
                other = seconds(theirs(peer))
                yield ["pair", "batch", f"{extension.upper()}, {name}", mine, other]


def decode():
    """Each kind of page by the imaging library of the first release and by this one."""
    folder = out / "kinds" / "pages"
    shutil.rmtree(folder.parent, ignore_errors=True)
    lines_of([sys.executable, here / "kinds.py", folder, sorted(pages.glob("ccitt4*.tif"))[0]])
    before = build.parent / "bench-before" / "bin" / "HostImaging.dll"
    environment = os.environ | {"BENCH_BEFORE": f"Z:{before}", "BENCH_PAGES": f"Z:{folder}"}
    return lines_of([wine, build / "bin" / "bench.exe", "decode"], env=environment)


def measure(program, argument):
    if program == "batch":
        return batch()
    if program == "decode":
        return decode()
    if program == "native":
        return lines_of(["taskset", "-c", "0", sys.executable, here / "peers.py", library, pages, argument])
    return lines_of([wine, build / "bin" / "bench.exe", argument])


def figure(kind, mine, limit):
    return limit / mine if kind == "faster" else mine / limit


def summary(row, detail, pairs):
    kind, target = ROWS[row][3:]
    if kind.startswith("value"):
        figures = [value for value in pairs]
    else:
        figures = [figure(kind, mine, limit) for mine, limit in pairs]
    middle = statistics.median(figures)
    good = target is None or (middle >= target if kind in ("faster", "value-least") else middle <= target)
    return {"row": row, "detail": detail, "kind": kind, "target": target, "figure": middle, "runs": len(figures),
            "spread": [min(figures), max(figures)], "met": good,
            "ours": statistics.median(p[0] for p in pairs) if not kind.startswith("value") else None}


def words(result):
    """Target, figure, spread and verdict as texts."""
    low, high = result["spread"]
    digits = 0 if high >= 100 else 2
    sign = {"most": "<=", "value-most": "<=", "faster": ">=", "value-least": ">="}[result["kind"]]
    target = "-" if result["target"] is None else f"{sign} {result['target']:g}"
    verdict = "" if result["target"] is None else "met" if result["met"] else "MISSED"
    return target, f"{result['figure']:.{digits}f}", f"{low:.{digits}f} - {high:.{digits}f}", verdict


def show(result):
    target, middle, spread, verdict = words(result)
    print(f"{result['row']:<20} {result['detail']:<50} {target:<8} {middle:>8}  {spread:<17} {verdict}", flush=True)


def table(results):
    lines = ["| what | | target | figure | spread | |", "|---|---|---|---|---|---|"]
    for result in results:
        target, middle, spread, verdict = words(result)
        target = target.replace("<=", "at most").replace(">=", "at least")
        lines.append(f"| {ROWS[result['row']][2]} | {result['detail']} | {target} | {middle} | {spread} | {verdict} |")
    return "\n".join(lines) + "\n"


def main():
    names = [row for row in ROWS if not wanted or row in wanted or ROWS[row][1] in wanted]
    if not names or (wanted and not all(w in ROWS or any(w == r[1] for r in ROWS.values()) for w in wanted)):
        fail(f"there are these rows: {' '.join(ROWS)}")
    out.mkdir(parents=True, exist_ok=True)
    results, sizes = [], {}
    for program, argument in dict.fromkeys(ROWS[name][:2] for name in names):
        print(f"measuring {argument} ...", file=sys.stderr)
        samples = {}
        for kind, row, detail, *numbers in measure(program, argument):
            values = [float(n) for n in numbers]
            samples.setdefault((row, detail), []).append(values[0] if kind == "value" else values)
        for (row, detail), pairs in samples.items():
            if row in names:
                results.append(summary(row, detail, pairs))
                show(results[-1])
            elif row.startswith("size-"):
                sizes.setdefault(row, []).append((int(detail), statistics.median(p[0] for p in pairs)))
    (out / "results.json").write_text(json.dumps({"rows": results, "sizes": sizes}, indent=1))
    (out / "table.md").write_text(table(results))
    if not wanted:
        (out / "cost.svg").write_text(plot.draw(sizes))
    judged = [r for r in results if r["target"] is not None]
    print(f"{sum(r['met'] for r in judged)} of {len(judged)} met; details in {out / 'results.json'}")


main()
