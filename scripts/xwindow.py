"""Windows of an X server as they stand on the screen: found, waited for and photographed from outside the program."""

import ctypes
import struct
import time
import zlib
from collections import namedtuple
from ctypes import POINTER, byref, c_char_p, c_int, c_long, c_uint, c_ulong, c_void_p

ALL_PLANES = ctypes.c_ulong(-1).value
Z_PIXMAP = 2
VIEWABLE = 2
PATIENCE = 120

Box = namedtuple("Box", "window x y width height")


class _Image(ctypes.Structure):
    _fields_ = [(name, c_int) for name in ("width", "height", "xoffset", "format")] + [("data", c_void_p)] + [
        (name, c_int) for name in ("byte_order", "bitmap_unit", "bitmap_bit_order", "bitmap_pad", "depth",
                                   "bytes_per_line", "bits_per_pixel")]


class _Attributes(ctypes.Structure):
    _fields_ = [(name, c_int) for name in ("x", "y", "width", "height", "border_width", "depth")] + [
        ("visual", c_void_p), ("root", c_ulong), ("class_", c_int), ("bit_gravity", c_int), ("win_gravity", c_int),
        ("backing_store", c_int), ("backing_planes", c_ulong), ("backing_pixel", c_ulong), ("save_under", c_int),
        ("colormap", c_ulong), ("map_installed", c_int), ("map_state", c_int), ("all_event_masks", c_long),
        ("your_event_mask", c_long), ("do_not_propagate_mask", c_long), ("override_redirect", c_int),
        ("screen", c_void_p)]


_Handler = ctypes.CFUNCTYPE(c_int, c_void_p, c_void_p)


def until(condition, what, patience=PATIENCE, pause=0.02):
    """The first true value of condition()."""
    deadline = time.monotonic() + patience
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(pause)


class Screen:
    def __init__(self):
        self.x = ctypes.CDLL("libX11.so.6")
        self.x.XOpenDisplay.restype = c_void_p
        self.x.XOpenDisplay.argtypes = [c_char_p]
        self.x.XDefaultRootWindow.restype = c_ulong
        self.x.XDefaultRootWindow.argtypes = [c_void_p]
        self.x.XQueryTree.argtypes = [c_void_p, c_ulong, POINTER(c_ulong), POINTER(c_ulong), POINTER(POINTER(c_ulong)),
                                      POINTER(c_uint)]
        self.x.XGetWindowAttributes.argtypes = [c_void_p, c_ulong, POINTER(_Attributes)]
        self.x.XGetImage.restype = POINTER(_Image)
        self.x.XGetImage.argtypes = [c_void_p, c_ulong, c_int, c_int, c_uint, c_uint, c_ulong, c_int]
        self.x.XDestroyImage.argtypes = [POINTER(_Image)]
        self.x.XFree.argtypes = [c_void_p]
        # A window may go between being listed and being asked; that is no reason to end.
        self._ignore = _Handler(lambda display, event: 0)
        self.x.XSetErrorHandler(self._ignore)
        self.display = self.x.XOpenDisplay(None)
        if not self.display:
            raise SystemExit("no X server")
        self.root = self.x.XDefaultRootWindow(self.display)

    def windows(self, smallest=200):
        """The windows that are shown, the lowest first."""
        root, parent, children, count = c_ulong(), c_ulong(), POINTER(c_ulong)(), c_uint()
        if not self.x.XQueryTree(self.display, self.root, byref(root), byref(parent), byref(children), byref(count)):
            return []
        found = []
        for index in range(count.value):
            look = _Attributes()
            if self.x.XGetWindowAttributes(self.display, children[index], byref(look)) and look.map_state == VIEWABLE:
                if look.width >= smallest and look.height >= smallest:
                    found.append(Box(children[index], look.x, look.y, look.width, look.height))
        if count.value:
            self.x.XFree(children)
        return found

    def pixels(self, x, y, width, height):
        """What stands on the screen there, as rows of red, green, blue; None when that cannot be read."""
        image = self.x.XGetImage(self.display, self.root, x, y, width, height, ALL_PLANES, Z_PIXMAP)
        if not image:
            return None
        stride, rgb = image.contents.bytes_per_line, bytearray(3 * width * height)
        raw = ctypes.string_at(image.contents.data, stride * height)
        self.x.XDestroyImage(image)
        for row in range(height):
            line = raw[row * stride:row * stride + 4 * width]
            for channel in range(3):
                rgb[3 * width * row + channel:3 * width * (row + 1):3] = line[2 - channel::4]
        return bytes(rgb)

    def shows(self, box):
        """Whether there is something in it. The screen behind is black, a new window shows it until painted."""
        points = [(box.x + box.width * part // 4, box.y + box.height * part // 4) for part in (1, 2, 3)]
        return all((self.pixels(x, y, 1, 1) or bytes(3)) != bytes(3) for x, y in points)

    def painted(self):
        """The first window with something in it."""
        return next(filter(self.shows, self.windows()), None)

    def photograph(self, box):
        return Picture(box.width, box.height, self.pixels(box.x, box.y, box.width, box.height))


class Picture(namedtuple("Picture", "width height rgb")):
    def png(self):
        """Small: with a palette where the colours allow it, else with the better of two filters."""
        stride = 3 * self.width
        rows = [self.rgb[at:at + stride] for at in range(0, len(self.rgb), stride)]
        pixels = [self.rgb[at:at + 3] for at in range(0, len(self.rgb), 3)]
        colours = {colour: number for number, colour in enumerate(sorted(set(pixels)))}
        if len(colours) <= 256:
            indices = bytes(map(colours.__getitem__, pixels))
            rows = [indices[at:at + self.width] for at in range(0, len(indices), self.width)]
            packed, kind, palette = _pack(b"\0" + row for row in rows), 3, b"".join(colours)
        else:
            above = [bytes(stride)] + rows[:-1]
            plain = _pack(b"\0" + row for row in rows)
            upward = _pack(b"\2" + bytes((a - b) & 255 for a, b in zip(row, over)) for row, over in zip(rows, above))
            packed, kind, palette = min(plain, upward, key=len), 2, b""
        header = struct.pack(">IIBBBBB", self.width, self.height, 8, kind, 0, 0, 0)
        chunks = [(b"IHDR", header)] + ([(b"PLTE", palette)] if palette else []) + [(b"IDAT", packed), (b"IEND", b"")]
        return b"\x89PNG\r\n\x1a\n" + b"".join(
            struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data)) for name, data in chunks)


def _pack(rows):
    squeeze = zlib.compressobj(9, zlib.DEFLATED, 15, 9)
    return b"".join(squeeze.compress(row) for row in rows) + squeeze.flush()
