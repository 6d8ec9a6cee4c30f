"""What both sounds are made and measured with. Lists of numbers at 44.1 kHz, one channel, 1 is full scale."""

import cmath
import math
import struct
import wave

RATE = 44100


def write(path, samples):
    """As 16-bit WAV."""
    numbers = [round(sample * 32767) for sample in samples]
    assert all(-32767 <= number <= 32767 for number in numbers), "the sound clips"
    with wave.open(str(path), "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(struct.pack(f"<{len(numbers)}h", *numbers))


def read(path):
    with wave.open(str(path), "rb") as file:
        assert (file.getnchannels(), file.getsampwidth(), file.getframerate()) == (1, 2, RATE), path
        data = file.readframes(file.getnframes())
    return [number / 32767 for number in struct.unpack(f"<{len(data) // 2}h", data)]


def biquad(samples, b, a, loop=False):
    """A filter of second order. A loop is filtered as if it had always been running."""
    x1 = x2 = y1 = y2 = 0.0
    for _ in range(2 if loop else 1):
        result = []
        for x in samples:
            y = b[0] * x + b[1] * x1 + b[2] * x2 - a[0] * y1 - a[1] * y2
            x2, x1, y2, y1 = x1, x, y1, y
            result.append(y)
    return result


def _shape(frequency, quality):
    omega = 2 * math.pi * frequency / RATE
    return math.cos(omega), math.sin(omega) / (2 * quality)


def low_pass(samples, frequency, quality=0.7071, loop=False):
    c, alpha = _shape(frequency, quality)
    b, a0 = (1 - c) / 2, 1 + alpha
    return biquad(samples, (b / a0, 2 * b / a0, b / a0), (-2 * c / a0, (1 - alpha) / a0), loop)


def high_pass(samples, frequency, quality=0.7071, loop=False):
    c, alpha = _shape(frequency, quality)
    b, a0 = (1 + c) / 2, 1 + alpha
    return biquad(samples, (b / a0, -2 * b / a0, b / a0), (-2 * c / a0, (1 - alpha) / a0), loop)


def high_shelf(samples, frequency, quality, decibels, loop=False):
    c, alpha = _shape(frequency, quality)
    a = 10 ** (decibels / 40)
    root = 2 * math.sqrt(a) * alpha
    a0 = (a + 1) - (a - 1) * c + root
    b = (a * ((a + 1) + (a - 1) * c + root), -2 * a * ((a - 1) + (a + 1) * c), a * ((a + 1) + (a - 1) * c - root))
    return biquad(samples, tuple(part / a0 for part in b),
                  (2 * ((a - 1) - (a + 1) * c) / a0, ((a + 1) - (a - 1) * c - root) / a0), loop)


def decibels(ratio):
    return 20 * math.log10(ratio) if ratio > 0 else -math.inf


def rms(samples):
    return math.sqrt(sum(sample * sample for sample in samples) / len(samples))


def loudness(samples, loop=False):
    """In LUFS after ITU-R BS.1770: weighted as ears do, and only of the parts that are not pauses. Blocks are
    of 100 ms, as the mew is short."""
    weighted = high_shelf(samples, 1681.97, 0.7071, 4.0, loop)
    weighted = high_pass(weighted, 38.135, 0.5003, loop)
    block = RATE // 10
    powers = [rms(weighted[at:at + block]) ** 2 for at in range(0, len(weighted) - block + 1, block // 4)]
    gate = 0.1 * sum(powers) / len(powers)
    heard = [power for power in powers if power > gate]
    return -0.691 + 10 * math.log10(sum(heard) / len(heard))


def levelled(samples, target, loop=False):
    factor = 10 ** ((target - loudness(samples, loop)) / 20)
    return [sample * factor for sample in samples]


def fft(values):
    """Of a power of two of numbers."""
    count = len(values)
    if count == 1:
        return list(values)
    even, odd = fft(values[0::2]), fft(values[1::2])
    turned = [cmath.exp(-2j * math.pi * index / count) * value for index, value in enumerate(odd)]
    return [a + b for a, b in zip(even, turned)] + [a - b for a, b in zip(even, turned)]


def spectrum(samples, size=8192):
    """Mean power of every bin, of windows that overlap by half. Bin n is at n * RATE / size Hz."""
    window = [0.5 - 0.5 * math.cos(2 * math.pi * index / size) for index in range(size)]
    total = [0.0] * (size // 2)
    starts = range(0, len(samples) - size + 1, size // 2)
    for start in starts:
        bins = fft([samples[start + index] * window[index] for index in range(size)])
        for index in range(size // 2):
            total[index] += abs(bins[index]) ** 2
    return [power / len(starts) for power in total]


def power_between(powers, low, high):
    """Of a spectrum, between two frequencies."""
    width = RATE / (2 * len(powers))
    return sum(powers[int(low / width):int(high / width)])


def smooth(x):
    """From 0 to 1, level at both ends."""
    x = min(1.0, max(0.0, x))
    return x * x * (3 - 2 * x)


def along(points, t):
    """The value at t of a line through points (t, value), rounded at each of them."""
    for (t0, v0), (t1, v1) in zip(points, points[1:]):
        if t <= t1:
            return v0 + (v1 - v0) * smooth((t - t0) / (t1 - t0))
    return points[-1][1]
