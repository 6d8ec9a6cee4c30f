"""The word mark "tuppi": five letters of our own, drawn as strokes on one baseline.

The stems of the u end in a cat's ears and the dot of the i is yellow. 140 x 28 units, shown at 70 x 14 points.
"""

from tuppi import INK, YELLOW, fill, line, n, oval, pts

STROKE = 4.8
TOP, BASE = 8.6, 20.4


def letter_t(x):
    return line(f"M{pts((x + 4.4, 3))}V{n(BASE - 5)}C{pts((x + 4.4, BASE - 1.6), (x + 6, BASE), (x + 9.4, BASE))}"
                f"H{n(x + 11)}", INK, STROKE) + line(f"M{pts((x, TOP))}H{n(x + 11)}", INK, STROKE)


def letter_u(x, width):
    half = STROKE / 2
    mid = x + width / 2
    out = line(f"M{pts((x, TOP + 1.4))}V{n(BASE - 5.6)}C{pts((x, BASE - 1.4), (x + 4, BASE), (mid, BASE))}"
               f"S{pts((x + width, BASE - 1.4), (x + width, BASE - 5.6))}V{n(TOP + 1.4)}", INK, STROKE)
    for side, stem in ((1, x), (-1, x + width)):
        tip = (stem - side * (half + 0.3), TOP - 5.4)
        out += (f'<path d="M{pts((stem - side * (half - 0.9), TOP + 2.6))}L{pts((tip[0] + side * 0.9, tip[1] + 0.9))}'
                f'Q{pts((stem + side * 2.6, TOP - 2.6), (stem + side * 4.2, TOP + 0.8))}'
                f'Q{pts((stem + side * 2.4, TOP + 1.6), (stem + side * (half - 0.9), TOP + 4.4))}Z" '
                f'fill="{INK}" stroke="{INK}" stroke-width="1.8" stroke-linejoin="round"/>')
    return out


def letter_p(x, width):
    mid, high = (TOP + BASE) / 2, (BASE - TOP) / 2
    bowl = (f'<path d="{oval(x + width / 2, mid, width / 2, high)}" fill="none" stroke="{INK}" '
            f'stroke-width="{n(STROKE)}"/>')
    return bowl + line(f"M{pts((x, TOP))}V25.2", INK, STROKE)


def letter_i(x):
    return line(f"M{pts((x, TOP + 1.4))}V{n(BASE)}", INK, STROKE) + fill(oval(x, 3.2, 2.9, 2.9), YELLOW)


def picture():
    parts = [letter_t(11), letter_u(34, 18), letter_p(64.5, 17), letter_p(94, 17), letter_i(124)]
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="70" height="14" viewBox="0 0 140 28">'
            f'{"".join(parts)}</svg>\n')
