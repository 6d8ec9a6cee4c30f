"""The five poses: each is a function of the loop's time, 0 <= t < 1, and ends where it begins."""

import math

from tuppi import (BLUE, BLUSH, CREAM, INK, PALE_YELLOW, SKY, WHITE, YELLOW, Solid, arm, body, fill, front_legs,
                   group, head, line, n, oval, paw, pts, scarf, smooth, tail)

TAU = 2 * math.pi
HEAD_Y = 55


def wave(t, times=1, phase=0.0):
    """A swing that comes round a whole number of times in one loop, so that no seam shows."""
    return math.sin(TAU * (times * t + phase))


def bump(t, middle, half):
    """0 far from middle, 1 at it, smooth in between; time is a circle."""
    away = abs((t - middle + 0.5) % 1 - 0.5) / half
    return 0.0 if away >= 1 else 0.5 + 0.5 * math.cos(math.pi * away)


def ease(s):
    s = min(max(s, 0.0), 1.0)
    return s * s * (3 - 2 * s)


def steps(value, count):
    """Held at few values: a head that rests for some frames costs nothing in the animation's size."""
    return round(value * count) / count


def blink(t, middle, half=0.05):
    return 1 - bump(t, middle, half)


def blend(a, b, s):
    """A colour between two, opaque all the way: the animation knows no half transparency."""
    pairs = zip(*(tuple(int(c[i:i + 2], 16) for i in (1, 3, 5)) for c in (a, b)))
    return "#" + "".join(f"{round(p + (q - p) * s):02X}" for p, q in pairs)


def waiting(t):
    x = 66
    sway = wave(t)
    breath = steps(wave(t, 1, 0.1) * 1.2, 1)
    return [
        tail(x + 24, 127, 78, 0 - 2 * sway, -104 + 8 * sway, 13, TAU * t + 1.2),
        body(x),
        front_legs(x),
        group([scarf()], x=x, y=HEAD_Y),
        group([head(open_=blink(t, 0.42, 0.1), left=14 * bump(t, 0.78, 0.035) + 14 * bump(t, 0.86, 0.035))],
              x=x, y=HEAD_Y - 0.6 * breath),
    ]


def headphones():
    band = f"M{pts((-50, 4))}C{pts((-51, -28), (-30, -40), (0, -40))}C{pts((30, -40), (51, -28), (50, 4))}"
    solid = Solid().limb(band, BLUE, 5.5)
    out = solid.svg()
    for side in (-1, 1):
        out += Solid().shape(oval(side * 52, 6, 9.5, 15), BLUE).mark(fill(oval(side * 53, 6, 4.6, 9), YELLOW)).svg()
    return out


def ripples(t):
    """Sound on its way into the headphones: two arcs at each ear, the outer one first."""
    out = []
    for side in (-1, 1):
        for late, radius in ((0, 29.5), (0.16, 22)):
            width = min(5.0, 9 * bump(t, (0.25 if side > 0 else 0.75) + late, 0.28))
            if width < 1.4:
                continue
            a, b = math.radians(-80), math.radians(-36)
            ends = [(side * (51 + radius * math.cos(c)), 6 + radius * math.sin(c)) for c in (a, b)]
            out.append(line(f"M{pts(ends[0])}A{n(radius)} {n(radius)} 0 0 {1 if side > 0 else 0} {pts(ends[1])}",
                            BLUE, width))
    return out


def listening(t):
    x = 80
    beat = wave(t)
    nod = wave(t, 2, 0.25)
    return [
        tail(x + 24, 127.5, 64, 4, -150 + 12 * beat, 20, TAU * t),
        body(x),
        front_legs(x),
        group([scarf(4 * beat)], x=x, y=HEAD_Y + 1),
        group([head(over=headphones(), left=6 + 5 * nod, right=6 + 5 * nod, look=(1.4 * beat, -1))] + ripples(t),
              x=x, y=HEAD_Y + 1.2 + 1.3 * nod, turn=4.5 * beat),
    ]


def pencil(x, y, turn):
    """The tip is at (x, y)."""
    solid = Solid(3.8)
    solid.shape("M0,0L-4.8,-11V-47Q-4.8,-50 0,-50Q4.8,-50 4.8,-47V-11Z", BLUE)
    solid.mark(fill("M0,0L-4.8,-11Q0,-8.5 4.8,-11Z", CREAM))
    solid.mark(fill("M0,1L-1.9,-4H1.9Z", INK))
    solid.mark(fill("M-4.8,-39V-43H4.8V-39Z", YELLOW))
    solid.mark(fill("M-4.8,-43V-47Q-4.8,-50 0,-50Q4.8,-50 4.8,-47V-43Z", BLUSH))
    return group([solid.svg()], x=x, y=y, turn=turn)


def writing(t):
    x = 70
    turn_back = 0.76
    write = min(t / turn_back, 1.0)
    back = ease((t - turn_back) / (1 - turn_back))
    left, right = 32, 82
    along = write if t < turn_back else 1 - back
    tip = left + (right - left) * along
    lift = -7 * math.sin(math.pi * back) if t >= turn_back else 0.0
    scribble = 1.6 * math.sin(TAU * 7 * write) if t < turn_back else 0.0
    row, pitch = 129.0, 8.5
    up = pitch * back
    old = blend(BLUE, PALE_YELLOW, back)
    end = left + (right - left) * write
    sheet = Solid().shape(f"M{pts((27, 107))}H{n(103)}Q{pts((105, 107), (105.6, 109))}L{pts((113, 134))}H17"
                          f"L{pts((24.4, 109))}Q{pts((25, 107), (27, 107))}Z", PALE_YELLOW)
    sheet.mark(line(f"M{pts((left, row - pitch - up))}H{n(right)}", old, 3.8))
    if end - left > 1:
        sheet.mark(line(f"M{pts((left, row - up))}H{n(end)}", BLUE, 3.8))
    px, py = tip, row + lift + scribble
    turn = 48 + 3 * (scribble / 1.6)
    grip = (px + 20 * math.sin(math.radians(turn)), py - 20 * math.cos(math.radians(turn)))
    return [
        tail(x + 24, 124, 70, 2, -98 + 8 * wave(back), 12, TAU * back + 2.6),
        body(x),
        group([scarf()], x=x, y=HEAD_Y),
        sheet.svg(),
        arm([(x + 19, 98), ((x + 25 + grip[0]) / 2 + 4, (104 + grip[1]) / 2 + 2), grip], width=9),
        group([scarf(loose=False)], x=x, y=HEAD_Y),
        paw(x - 36, 108),
        group([head(mouth="tongue", left=4, right=4 + 12 * bump(t, 0.5, 0.04), shift=(0, 4),
                    look=(-2 + 4 * steps(along, 5), 2.6), open_=blink(t, 0.88, 0.07))],
              x=x, y=HEAD_Y - 2),
        pencil(px, py, turn),
        paw(grip[0] + 1, grip[1] + 2.4, 7.2, 6.4),
    ]


def star(x, y, size, colour=YELLOW):
    if size < 2.5:
        return ""
    a, b = size, size * 0.3
    d = f"M{pts((0, -a))}Q{pts((b * 0.55, -b * 0.55), (a, 0))}Q{pts((b * 0.55, b * 0.55), (0, a))}" \
        f"Q{pts((-b * 0.55, b * 0.55), (-a, 0))}Q{pts((-b * 0.55, -b * 0.55), (0, -a))}Z"
    return Solid(3.2).shape(d, colour, x=x, y=y).svg()


def done(t):
    x = 64
    cheer = wave(t)
    sheet = Solid().shape(f"M-14,-23H10L19,-14V20Q19,23 16,23H-14Q-17,23 -17,20V-20Q-17,-23 -14,-23Z", PALE_YELLOW)
    sheet.mark(fill("M10,-23L19,-14H12Q10,-14 10,-16Z", WHITE))
    sheet.mark(line("M-8,2L-1,10L11,-6", BLUE, 6.6))
    lift = 1.8 * cheer
    sx, sy = x + 69, 60 - lift
    hold = (sx - 8, sy + 23)
    return [
        tail(x - 22, 127.5, 58, 178, 150 + 14 * cheer, 22, TAU * t),
        arm([(x + 12, 111), (x + 40, 108), hold], width=11),
        body(x),
        fill(oval(x + 1, 106, 14, 17), CREAM),
        front_legs(x, sides=(-1,)),
        group([scarf(3 * wave(t, 1, 0.15))], x=x, y=HEAD_Y),
        group([head(eyes="happy", mouth="laugh")], x=x, y=HEAD_Y + 1 - 1.2 * cheer, turn=-4 + 1.2 * cheer),
        group([sheet.svg()], x=sx, y=sy, turn=8 + 3 * cheer),
        paw(hold[0] + 1, hold[1] - 1, 8, 7),
        star(135, 17, 4 + 6 * bump(t, 0.25, 0.45)),
        star(145, 117, 5.5 + 3.5 * bump(t, 0.75, 0.45)),
    ]


def drop(x, y, size):
    if size < 0.3:
        return ""
    d = f"M0,-10C{pts((4, -4), (7, -0.5), (7, 3.6))}C{pts((7, 8), (3.6, 10), (0, 10))}" \
        f"C{pts((-3.6, 10), (-7, 8), (-7, 3.6))}C{pts((-7, -0.5), (-4, -4), (0, -10))}Z"
    shape = Solid(4.2).shape(d, SKY).mark(line("M-2.6,4.4Q-2.4,6.4 -0.4,6.8", WHITE, 2.2))
    return group([shape.svg()], x=x, y=y, sx=size, sy=size)


def yarn(x, y, roll):
    inner = [line("M-12,-5Q0,-13 12,-6", INK, 2.8), line("M-14.5,3Q0,-6 14.5,3", INK, 2.8),
             line("M-9,11Q-1,1 11.5,8.5", INK, 2.8)]
    return Solid().shape(oval(x, y, 16.5, 16.5), YELLOW).mark(group(inner, x=x, y=y, turn=roll)).svg()


def thread(points):
    return Solid(3.2).limb(smooth(points), YELLOW, 3.8).svg()


def coil(x, y, rx, ry, turn, front):
    """Half a turn of thread round the body; the other half runs behind it."""
    c, s = math.cos(math.radians(turn)), math.sin(math.radians(turn))
    points = []
    for i in range(13):
        a = math.pi * i / 12 * (1 if front else -1)
        px, py = rx * math.cos(a), ry * math.sin(a)
        points.append((x + px * c - py * s, y + px * s + py * c))
    return points


def oops(t):
    x = 71
    shake = wave(min(t / 0.44, 1.0), 2) * (0.25 + 0.75 * bump(t, 0.22, 0.22)) if t < 0.44 else 0.0
    grown = min(bump(t, 0.5, 0.5) * 3, 1)
    return [
        thread(coil(x, 118, 37, 7, -9, False)),
        tail(x - 22, 127.5, 52, 180, 120 + 30 * shake, 12 * shake, 1.2),
        body(x),
        front_legs(x),
        group([scarf(3 * shake)], x=x, y=HEAD_Y),
        thread([(x + 64, 132), (x + 53, 130), (x + 47, 121), (x + 41, 114.5)] + coil(x, 118, 37, 7, -9, True)[2:]),
        group([head(eyes="worried", mouth="wavy", left=40 + 5 * shake, right=40 - 5 * shake, shift=(3.4 * shake, 0),
                    look=(1.5 * shake, 0.5), open_=blink(t, 0.72, 0.06))],
              x=x + 1.4 * shake, y=HEAD_Y + 1, turn=2.5 * shake),
        drop(x + 66, 20 + 14 * t, grown),
        yarn(138, 117, 7 * shake),
    ]


# name, the pose, frames in the loop, hundredths of a second for each, the frame shown as the still
POSES = [
    ("waiting", waiting, 40, 8, 10),
    ("listening", listening, 16, 8, 5),
    ("writing", writing, 32, 8, 17),
    ("done", done, 16, 8, 4),
    ("oops", oops, 32, 8, 16),
]
