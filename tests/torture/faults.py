"""What can go wrong outside of the programs: a disk that fails, a clock that jumps. See Faults.cpp."""

import ctypes
import errno
import mmap
import os

WRITE, READ, SYNC, CREATE, RENAME = 1, 2, 4, 8, 16
ALL_WRITING = WRITE | SYNC | CREATE | RENAME

# name: the operations that fail, and how
DISK = {
    "full disk": (WRITE | CREATE | RENAME, errno.ENOSPC),
    "disk error on writing": (ALL_WRITING, errno.EIO),
    "disk error on reading": (READ, errno.EIO),
    "half of it written": (WRITE, 0),
    "disk error on syncing": (SYNC, errno.EIO),
}
# What shares on the network answer besides, named by the system's sentence.
SHARE = {os.strerror(number): (READ, number) for number in (errno.ESTALE, errno.ENOTCONN)}


class Control(ctypes.Structure):
    _fields_ = [("operations", ctypes.c_int32), ("error", ctypes.c_int32), ("spared", ctypes.c_int32),
                ("left", ctypes.c_int32), ("failed", ctypes.c_int32), ("clock_reads", ctypes.c_int32),
                ("clock_offset", ctypes.c_int64)]


class Faults:
    """Rules over the programs that are started in `environment`."""

    def __init__(self, library, path, under, spared):
        size = ctypes.sizeof(Control)
        with open(path, "w+b") as file:
            file.truncate(size)
            self._memory = mmap.mmap(file.fileno(), size)
        self._control = Control.from_buffer(self._memory)
        self.environment = {"LD_PRELOAD": library, "TUPPI_FAULTS": path, "TUPPI_FAULTS_UNDER": under,
                            "TUPPI_FAULTS_SPARED": spared}

    def break_disk(self, kind, spared, times):
        """So many calls pass, then so many fail."""
        self._control.left = 0
        self._control.operations, self._control.error = (DISK | SHARE)[kind]
        self._control.spared = spared
        self._control.left = times

    def mend_disk(self):
        """Gives back how many calls have failed since the last time."""
        self._control.operations = self._control.left = 0
        failed, self._control.failed = self._control.failed, 0
        return failed

    def shift_clock(self, seconds):
        self._control.clock_offset = seconds

    @property
    def clock_reads(self):
        return self._control.clock_reads
