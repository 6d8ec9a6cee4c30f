"""The mew: a young cat's "miaow". A voice whose pitch rises and falls, through a mouth that opens and closes."""

import math
import random

from dsp import RATE, along, biquad, high_pass, low_pass, smooth

SECONDS = 0.82
COUNT = int(SECONDS * RATE)

# Along the mew (0 to 1). Pitch in Hz; the closed lips of the m, the i, the open a, the rounded ou.
PITCH = [(0, 545), (0.10, 610), (0.34, 790), (0.55, 735), (0.82, 560), (1, 455)]
LEVEL = [(0, 0), (0.07, 0.20), (0.16, 0.42), (0.36, 1.0), (0.56, 0.86), (0.80, 0.40), (1, 0)]
# Of each formant: its frequency along the mew, its width, its level.
FORMANTS = [
    ([(0, 420), (0.14, 560), (0.40, 1250), (0.60, 1150), (0.85, 720), (1, 600)], 190, 1.00),
    ([(0, 1500), (0.14, 2700), (0.40, 2150), (0.60, 1850), (0.85, 1350), (1, 1150)], 260, 0.62),
    ([(0, 3600), (0.20, 4100), (0.50, 3700), (1, 3300)], 420, 0.30),
    ([(0, 5400), (0.40, 5900), (1, 5200)], 700, 0.12),
]
VOICE_FALL = 1.15  # how fast the voice's overtones get weaker: level 1 / number ** this
HIGHEST = 9000


def formants_at(place):
    return [(along(points, place), width, level) for points, width, level in FORMANTS]


def mouth(frequency, formants):
    """What the mouth makes of a tone of that frequency."""
    total = 0.05  # what goes past every formant
    for centre, width, level in formants:
        distance = (frequency - centre) / (width / 2 + 0.09 * centre)
        total += level / (1 + distance * distance)
    return total


def voice():
    """Overtones one by one. The mouth changes slowly: it is asked every 64 samples, and followed in between."""
    step = 64
    marks = range(0, COUNT + step, step)
    counts = int(HIGHEST / min(value for _, value in PITCH))
    gains = []
    for mark in marks:
        place = mark / COUNT
        pitch, formants = along(PITCH, place), formants_at(place)
        gains.append([mouth(pitch * number, formants) / number ** VOICE_FALL
                      * (1 - smooth((pitch * number - 7500) / (HIGHEST - 7500))) for number in range(1, counts + 1)])
    phase, result = 0.0, []
    for index in range(COUNT):
        place = index / COUNT
        tremble = 1 + 0.010 * smooth((place - 0.25) / 0.4) * math.sin(2 * math.pi * 6.2 * index / RATE)
        phase += 2 * math.pi * along(PITCH, place) * tremble / RATE
        mark, part = divmod(index, step)
        before, after, part = gains[mark], gains[mark + 1], part / step
        result.append(sum((low + (high - low) * part) * math.sin(phase * number)
                          for number, (low, high) in enumerate(zip(before, after), 1) if low + high > 1e-4))
    return result


def air():
    """A little breath, most of it where the mew begins and ends."""
    chance = random.Random(7)
    noise = [2 * chance.random() - 1 for _ in range(COUNT)]
    return low_pass(high_pass(noise, 1400), 5200)


def room(samples, wet):
    """A few short echoes, so that it does not stand in empty space."""
    result = samples + [0.0] * int(0.06 * RATE)
    for delay, level in ((0.0113, 0.5), (0.0197, 0.36), (0.0291, 0.25), (0.0431, 0.15)):
        shift = int(delay * RATE)
        soft = biquad(samples, (0.45, 0.0, 0.0), (-0.55, 0.0))
        for index, sample in enumerate(soft):
            result[index + shift] += wet * level * sample
    return result


def samples():
    breath = air()
    result = []
    for index, tone in enumerate(voice()):
        place = index / COUNT
        level = along(LEVEL, place)
        hiss = 0.035 + 0.05 * smooth((place - 0.7) / 0.3)
        result.append(level * (tone + hiss * breath[index]))
    result = high_pass(room(result, 0.35), 180)
    fade = int(0.03 * RATE)
    for index in range(fade):
        result[-1 - index] *= smooth(index / fade)
        result[index] *= smooth(2 * index / fade)
    return result
