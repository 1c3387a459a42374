from math import ceil, floor, log10

TITLES = {"size-sets": "enumerate sets", "size-manage": "open Manage Area Sets, by sets",
          "size-configure": "open Configure Area Set, by areas", "size-areas": "mask a page, by areas",
          "size-pixels": "mask a page, by pixels", "size-shapes": "repaint, by areas"}
COLOURS = ["#1b6ca8", "#c1440e", "#2e7d32", "#7b1fa2", "#8d6e00", "#444444"]
WIDTH, HEIGHT, LEFT, TOP, PLOT_WIDTH, PLOT_HEIGHT = 860, 480, 80, 20, 500, 400


def count_text(power):
    return f"{10 ** power:,}" if power < 6 else f"{10 ** (power - 6):,} M"


def time_text(power):
    """Of 10 ** power milliseconds."""
    return f"{10.0 ** power:g} ms" if power < 3 else f"{10 ** (power - 3):,} s"


def draw(sizes):
    """`sizes`: row to points of (size, nanoseconds)."""
    lines = {row: [(max(x, 1), y / 1e6) for x, y in sorted(points)] for row, points in sizes.items() if row in TITLES}
    points = [point for line in lines.values() for point in line]
    if not points:
        return ""
    x_ends = floor(log10(min(p[0] for p in points))), ceil(log10(max(p[0] for p in points)))
    y_ends = floor(log10(min(p[1] for p in points))), ceil(log10(max(p[1] for p in points)))

    def place(x, y):
        return (LEFT + (log10(x) - x_ends[0]) / (x_ends[1] - x_ends[0]) * PLOT_WIDTH,
                TOP + PLOT_HEIGHT - (log10(y) - y_ends[0]) / (y_ends[1] - y_ends[0]) * PLOT_HEIGHT)

    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{HEIGHT}" font-family="sans-serif" '
             f'font-size="12"><rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>']
    for power in range(x_ends[0], x_ends[1] + 1):
        x, _ = place(10 ** power, 10 ** y_ends[0])
        parts.append(f'<path d="M{x:.0f} {TOP}V{TOP + PLOT_HEIGHT}" stroke="#ddd"/>'
                     f'<text x="{x:.0f}" y="{TOP + PLOT_HEIGHT + 18}" text-anchor="middle">{count_text(power)}</text>')
    for power in range(y_ends[0], y_ends[1] + 1):
        _, y = place(10 ** x_ends[0], 10 ** power)
        parts.append(f'<path d="M{LEFT} {y:.0f}H{LEFT + PLOT_WIDTH}" stroke="#ddd"/>'
                     f'<text x="{LEFT - 8}" y="{y + 4:.0f}" text-anchor="end">{time_text(power)}</text>')
    for number, (row, line) in enumerate(lines.items()):
        colour = COLOURS[number % len(COLOURS)]
        places = [place(*point) for point in line]
        parts.append(f'<polyline fill="none" stroke="{colour}" stroke-width="2" points="' +
                     " ".join(f"{x:.1f},{y:.1f}" for x, y in places) + '"/>')
        parts += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3" fill="{colour}"/>' for x, y in places]
        y = TOP + 20 + 22 * number
        parts.append(f'<rect x="{LEFT + PLOT_WIDTH + 20}" y="{y - 9}" width="14" height="4" fill="{colour}"/>'
                     f'<text x="{LEFT + PLOT_WIDTH + 42}" y="{y}">{TITLES[row]}</text>')
    parts.append(f'<text x="{LEFT + PLOT_WIDTH / 2}" y="{TOP + PLOT_HEIGHT + 42}" text-anchor="middle">sets, areas or '
                 'pixels</text></svg>\n')
    return "\n".join(parts)
