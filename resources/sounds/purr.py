"""The purr: a train of about 25 pulses a second, which breathing raises and lowers. Out and in differ in level,
pitch and colour. Everything is laid around a circle, so the end runs into the beginning."""

import math
import random

from dsp import RATE, high_pass, low_pass, smooth

SECONDS = 4
COUNT = SECONDS * RATE

# One breath each: how long it takes (of the whole), whether out, its pulses per second, its level.
BREATHS = [(0.27, True, 24.0, 1.00), (0.23, False, 26.8, 0.62), (0.28, True, 23.6, 0.94), (0.22, False, 27.2, 0.58)]
REST = 0.34  # what is left of the level between two breaths

# What sounds with each pulse: frequency, level, seconds to fade. The low ones are the body, the others the throat.
OUT = [(92, 1.0, 0.020), (168, 0.85, 0.016), (305, 0.60, 0.011), (520, 0.48, 0.008), (880, 0.28, 0.006)]
IN = [(104, 0.8, 0.018), (196, 0.80, 0.014), (372, 0.66, 0.010), (640, 0.52, 0.007), (1120, 0.33, 0.005)]
PULSE = int(0.11 * RATE)


def breath_at(position):
    """Of a place on the circle (0 to 1): how much of it is breathing out, pulses per second, level."""
    start = 0.0
    for index, (length, is_out, rate, level) in enumerate(BREATHS):
        if position < start + length:
            place = (position - start) / length
            _, _, next_rate, _ = BREATHS[(index + 1) % len(BREATHS)]
            turn = smooth((place - 0.86) / 0.14)  # to the next breath
            out = (1 - turn) if is_out else turn
            arch = math.sin(math.pi * place) ** 0.6
            return out, rate + (next_rate - rate) * turn, REST + (level - REST) * arch
        start += length
    return breath_at(0.0)


def pulse_places(chance):
    """A whole number of pulses around the circle, a little uneven as in an animal."""
    rates = [breath_at(index / COUNT)[1] for index in range(COUNT)]
    total = sum(rates) / RATE
    count = round(total)
    places, phase, wanted = [], 0.0, 0
    for index, rate in enumerate(rates):
        phase += rate / RATE * count / total
        if phase > wanted and wanted < count:
            uneven = 0.025 * RATE / rate * (2 * chance.random() - 1)
            places.append(index + uneven)
            wanted += 1
    return places


def colours():
    def pulse(parts):
        shape = []
        for index in range(PULSE):
            t = index / RATE
            ease = smooth(t / 0.0025) * (1 - smooth((t - 0.09) / 0.02))
            shape.append(ease * sum(level * math.sin(2 * math.pi * frequency * t) * math.exp(-t / fade)
                                    for frequency, level, fade in parts))
        return shape

    return pulse(OUT), pulse(IN)


def breath_noise(chance):
    noise = [2 * chance.random() - 1 for _ in range(COUNT)]
    noise = low_pass(high_pass(noise, 420, loop=True), 1900, loop=True)
    return low_pass(noise, 3200, loop=True)


def samples():
    chance = random.Random(25)
    out_pulse, in_pulse = colours()
    air = breath_noise(chance)
    result, flutter = [0.0] * COUNT, [0.0] * COUNT
    for place in pulse_places(chance):
        out, _, level = breath_at((place / COUNT) % 1)
        level *= 1 + 0.16 * (2 * chance.random() - 1)
        first = math.ceil(place)
        for index in range(PULSE):
            at = (first + index) % COUNT
            result[at] += level * (out * out_pulse[index] + (1 - out) * in_pulse[index])
            # Air comes through in puffs, one with each pulse.
            t = index / RATE
            flutter[at] += level * smooth(t / 0.004) * math.exp(-t / 0.012)
    for index in range(COUNT):
        out, _, level = breath_at(index / COUNT)
        result[index] += air[index] * (flutter[index] * (0.55 - 0.15 * out) + 0.10 * level)
    return high_pass(low_pass(result, 4500, loop=True), 45, loop=True)
