"""Tuppi's shapes and joints: the one place that knows what the cat looks like.

Every pose and the application icon are built from these parts, so that the head, the markings and the scarf stay
the same everywhere. Units are those of a 160 x 140 picture, y downwards; parts are drawn around their own joint.
"""

import math

INK = "#0B2545"
FUR = "#F9C78B"
STRIPE = "#E99A4E"
CREAM = "#FFF5E4"
BLUSH = "#F79D83"
NOSE = "#D9604F"
BLUE = "#0057B7"
SKY = "#5EA0E6"
YELLOW = "#FFD640"
PALE_YELLOW = "#FFE680"
WHITE = "#FFFFFF"

LINE = 4.8


def n(value):
    """A number as short as it can be: the same bytes on every run and on every machine."""
    text = f"{value:.2f}".rstrip("0").rstrip(".")
    return "0" if text in ("-0", "") else text


def pts(*pairs):
    return " ".join(f"{n(x)},{n(y)}" for x, y in pairs)


# --- elements -------------------------------------------------------------------------------------------------------


def fill(d, colour):
    return f'<path d="{d}" fill="{colour}"/>'


def line(d, colour=INK, width=LINE):
    return (f'<path d="{d}" fill="none" stroke="{colour}" stroke-width="{n(width)}" '
            'stroke-linecap="round" stroke-linejoin="round"/>')


def group(parts, x=0.0, y=0.0, turn=0.0, sx=1.0, sy=1.0):
    steps = []
    if x or y:
        steps.append(f"translate({n(x)} {n(y)})")
    if turn:
        steps.append(f"rotate({n(turn)})")
    if sx != 1 or sy != 1:
        steps.append(f"scale({sx:.4g} {sy:.4g})")
    inner = "".join(parts)
    return f'<g transform="{" ".join(steps)}">{inner}</g>' if steps else inner


class Solid:
    """Shapes that read as one body: a line runs around their union and none where they overlap."""

    def __init__(self, line_width=LINE):
        self.width = line_width
        self.under = []
        self.over = []

    def shape(self, d, colour, **place):
        self.under.append(group([f'<path d="{d}" fill="{INK}" stroke="{INK}" stroke-width="{n(2 * self.width)}" '
                                 'stroke-linejoin="round"/>'], **place))
        self.over.append(group([fill(d, colour)], **place))
        return self

    def limb(self, d, colour, width, **place):
        self.under.append(group([line(d, INK, width + 2 * self.width)], **place))
        self.over.append(group([line(d, colour, width)], **place))
        return self

    def mark(self, element):
        """Something painted on the fur, above the fills and without a line of its own."""
        self.over.append(element)
        return self

    def svg(self):
        return "".join(self.under + self.over)


# --- outlines -------------------------------------------------------------------------------------------------------


def oval(cx, cy, rx, ry):
    k = 0.5523
    return (f"M{pts((cx - rx, cy))}"
            f"C{pts((cx - rx, cy - k * ry), (cx - k * rx, cy - ry), (cx, cy - ry))}"
            f"C{pts((cx + k * rx, cy - ry), (cx + rx, cy - k * ry), (cx + rx, cy))}"
            f"C{pts((cx + rx, cy + k * ry), (cx + k * rx, cy + ry), (cx, cy + ry))}"
            f"C{pts((cx - k * rx, cy + ry), (cx - rx, cy + k * ry), (cx - rx, cy))}Z")


def smooth(points):
    """An open curve through all points."""
    out = [f"M{pts(points[0])}"]
    for i in range(len(points) - 1):
        a = points[max(i - 1, 0)]
        b, c = points[i], points[i + 1]
        d = points[min(i + 2, len(points) - 1)]
        out.append("C" + pts((b[0] + (c[0] - a[0]) / 6, b[1] + (c[1] - a[1]) / 6),
                             (c[0] - (d[0] - b[0]) / 6, c[1] - (d[1] - b[1]) / 6), c))
    return "".join(out)


def mirrored(start, curves):
    """A closed outline, symmetrical about x = 0: the right half is given from the top to the bottom."""
    out = [f"M{pts(start)}"]
    here = start
    back = []
    for curve in curves:
        out.append("C" + pts(*curve))
        back.append((curve[1], curve[0], here))
        here = curve[2]
    for curve in reversed(back):
        out.append("C" + pts(*((-x, y) for x, y in curve)))
    return "".join(out) + "Z"


HEAD = mirrored((0, -34), [
    ((27, -34), (47, -24), (51, -2)),
    ((52, 4), (54, 9), (58.5, 13.5)),
    ((55.5, 15), (53, 16), (51, 17.5)),
    ((51.5, 20), (52.5, 22), (54, 24.5)),
    ((50, 25.2), (47, 25.4), (44, 25.6)),
    ((34, 33), (18, 36), (0, 36)),
])
EAR = f"M{pts((-19, 18))}C{pts((-17.5, 2), (-11, -15), (-5, -23.4))}Q{pts((-1.4, -28), (3, -24))}" \
      f"C{pts((11, -16), (18, -3), (22, 18))}Z"
EAR_INSIDE = f"M{pts((-11, 18))}C{pts((-10.6, 3), (-7, -10), (-1.6, -17.4))}C{pts((6, -11), (12.4, 2), (14.6, 18))}Z"
BODY = mirrored((0, -24), [
    ((14, -24), (24, -20), (28, -4)),
    ((31, 6), (36, 13), (34, 20)),
    ((32.6, 24), (24, 24), (0, 24)),
])


# --- the head -------------------------------------------------------------------------------------------------------


def ear(side, turn=0.0):
    """side is -1 or 1; turn leans the ear outwards from its upright place."""
    low = max(turn, 0.0)
    return dict(x=side * (27 + 0.24 * low), y=-22 + 0.2 * low, turn=side * (19 + turn), sx=side)


def eye(x, y, iris, open_=1.0, look=(0.0, 0.0)):
    """open_ lowers the lid, the lower rim stays: 1 is wide open, below 0.56 the eye is closed."""
    if open_ < 0.56:
        return line(f"M{pts((x - 8.4, y + 2.5))}Q{pts((x, y + 10.5), (x + 8.4, y + 2.5))}", INK, 4.4)
    rx, ry = 9.2, 10.8
    lx, ly = look
    parts = [fill(oval(0, 0, rx, ry), INK),
             fill(oval(lx * 0.3, 1.2 + ly * 0.3, 6.8, 7.9), iris),
             fill(oval(lx, -0.8 + ly, 4.9, 6.9), INK),
             fill(oval(-2.4 + lx * 0.7, -4.0 + ly * 0.6, 3.1, 3.4), WHITE)]
    return group(parts, x=x, y=y + ry * (1 - open_), sy=open_)


def happy_eye(x, y):
    return line(f"M{pts((x - 8.5, y + 4))}Q{pts((x, y - 9.5), (x + 8.5, y + 4))}", INK, 5)


def face(eyes="open", open_=1.0, look=(0.0, 0.0), mouth="smile", shift=(0.0, 0.0)):
    out = []
    sx, sy = shift
    for x, half in ((-11.5, 4.4), (0, 7.6), (11.5, 4.4)):
        x += sx * 0.5
        out.append(line(f"M{pts((x, -21 - half + sy * 0.3))}V{n(-21 + half + sy * 0.3)}", STRIPE, 5.4))
    inner = []
    inner.append(fill(oval(0, 21, 19, 13.5), CREAM))
    for side in (-1, 1):
        inner.append(fill(oval(side * 33.5, 17, 7.6, 5), BLUSH))
    if eyes == "happy":
        inner += [happy_eye(-22, 4), happy_eye(22, 4)]
    else:
        inner += [eye(-22, 3, SKY, open_, look), eye(22, 3, YELLOW, open_, look)]
    # nose, then the mouth hanging from it
    if mouth == "laugh":
        inner.append(f'<path d="M{pts((-8.5, 21))}Q{pts((0, 24), (8.5, 21))}C{pts((8.5, 35), (-8.5, 35), (-8.5, 21))}Z"'
                     f' fill="{NOSE}" stroke="{INK}" stroke-width="3.8" stroke-linejoin="round"/>')
    elif mouth == "wavy":
        inner.append(line(smooth([(-10, 26), (-5, 22.6), (0, 26), (5, 22.6), (10, 26)]), INK, 4))
    elif mouth == "tongue":
        # The mouth is small here, so that lips and tongue stay apart at 64 pixels.
        inner.append(f'<path d="M-5,23.6V28.6C-5,35.4 5,35.4 5,28.6V23.6Z" fill="{BLUSH}"/>')
        inner.append(line("M-5,24V28.6C-5,35.4 5,35.4 5,28.6V24", INK, 3.2))
        inner.append(line("M-10.5,21.6Q-8,24 -4.6,23.6H4.6Q8,24 10.5,21.6", INK, 3.6))
    else:
        inner.append(line(f"M{pts((-10, 20.5))}C{pts((-9, 27.5), (-1, 27.5), (0, 20))}"
                          f"C{pts((1, 27.5), (9, 27.5), (10, 20.5))}", INK, 3.8))
    inner.append(fill(f"M{pts((-5.6, 12.6))}Q{pts((0, 10.4), (5.6, 12.6))}C{pts((6.4, 15.4), (2, 19.4), (0, 19.4))}"
                      f"C{pts((-2, 19.4), (-6.4, 15.4), (-5.6, 12.6))}Z", NOSE))
    if eyes == "worried":
        inner.append(line(f"M{pts((-35, -10.5))}Q{pts((-27, -12), (-19.5, -17.5))}", INK, 4.4))
        inner.append(line(f"M{pts((35, -10.5))}Q{pts((27, -12), (19.5, -17.5))}", INK, 4.4))
    out.append(group(inner, x=sx, y=sy))
    return "".join(out)


def head(left=0.0, right=0.0, over="", **looks):
    """left and right lean the ears outwards; over goes on top of everything, as headphones do."""
    solid = Solid()
    for side, lean in ((-1, left), (1, right)):
        solid.shape(EAR, FUR, **ear(side, lean))
    solid.shape(HEAD, FUR)
    inside = "".join(group([fill(EAR_INSIDE, BLUSH)], **ear(side, lean)) for side, lean in ((-1, left), (1, right)))
    cover = fill(HEAD, FUR)
    return solid.svg() + inside + cover + face(**looks) + over


# --- the body -------------------------------------------------------------------------------------------------------


def tail(x, y, length, start, bend, wave=0.0, phase=0.0, width=10.0):
    """A curve that leaves (x, y) in direction start (degrees, 0 = right, -90 = up) and turns by bend on its way."""
    steps = 16
    points = [(x, y)]
    for i in range(steps):
        s = (i + 0.5) / steps
        angle = math.radians(start + bend * s + wave * s * math.sin(phase - 2.2 * s))
        x += math.cos(angle) * length / steps
        y += math.sin(angle) * length / steps
        points.append((x, y))
    solid = Solid()
    solid.limb(smooth(points), FUR, width)
    solid.mark(line(smooth(points[12:]), CREAM, width))
    return solid.svg()


def scarf(swing=0.0, loose=True):
    """Around the neck, in head coordinates below the chin; swing turns the loose end."""
    corner = f"L{pts((9.4, 19))}Q{pts((9.6, 21.6), (7, 21.9))}L{pts((-5, 23))}Q{pts((-7.7, 23.2), (-7.7, 20.6))}Z"
    end = f"M{pts((-6, -4))}L{pts((6, -4))}{corner}"
    edge = f"M{pts((-7.2, 11.2))}L{pts((8.2, 10))}{corner}"
    place = dict(x=-19, y=43, turn=10 + swing)
    band = f"M{pts((-30, 26))}C{pts((-16, 36), (16, 36), (30, 26))}Q{pts((34, 33), (31, 38))}" \
           f"C{pts((17, 49), (-17, 49), (-31, 38))}Q{pts((-34, 33), (-30, 26))}Z"
    hanging = Solid(4.2).shape(end, BLUE, **place).mark(group([fill(edge, YELLOW)], **place))
    return (hanging.svg() if loose else "") + Solid().shape(band, BLUE).svg()


def body(x, sy=1.0, base=110.0):
    """The seated trunk with its hind feet; the front paws are not included."""
    solid = Solid()
    for side in (-1, 1):
        solid.shape(oval(x + side * 24, base + 18.2, 13, 5.6), FUR)
    solid.shape(BODY, FUR, x=x, y=base, sy=sy)
    return solid.svg()


def front_legs(x, y=134.0, sides=(-1, 1)):
    """Both front legs, straight down and together, cream like a pair of socks; (x, y) is the ground between them."""
    out = []
    for side in sides:
        leg = f"M{pts((-0.4, -30))}L{pts((13, -30))}C{pts((13.6, -20), (15.5, -13), (15.5, -7.6))}" \
              f"C{pts((15.5, -2), (11.6, 0), (7.8, 0))}C{pts((3.6, 0), (0, -2), (-0.4, -7))}Z"
        seam = f"M{pts((13.4, -24))}C{pts((14, -18), (15.5, -13), (15.5, -7.6))}" \
               f"C{pts((15.5, -2), (11.6, 0), (7.8, 0))}C{pts((3.6, 0), (0, -2), (0, -7))}V-14"
        out.append(group([fill(leg, CREAM), line(seam, INK, 3.8)], x=x, y=y, sx=side))
    return "".join(out)


def arm(points, width=10.5, paw=4.0):
    """A front leg in use, ending in a cream paw at the last point; body or scarf has to cover the first."""
    (tx, ty), (px, py) = points[-1], points[-2]
    far = math.hypot(tx - px, ty - py)
    wrist = (tx - (tx - px) / far * paw, ty - (ty - py) / far * paw)
    return Solid().limb(smooth(points), FUR, width).mark(line(f"M{pts(wrist)}L{pts((tx, ty))}", CREAM, width)).svg()


def paw(x, y, rx=7.6, ry=6.4):
    return Solid(4.2).shape(oval(x, y, rx, ry), CREAM).svg()


def picture(parts):
    return ('<svg xmlns="http://www.w3.org/2000/svg" width="160" height="140" viewBox="0 0 160 140">'
            f'{"".join(parts)}</svg>\n')
