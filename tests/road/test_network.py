"""Nothing leaves the computer while a recording is transcribed, read, corrected, saved and thrown away.

Runs the given command under strace with all its children and prints every address that they name to the kernel: in
connecting, in sending, in binding. Only sockets in the file system, messages of the kernel itself and the computer's own
loopback are left alone; any other address fails.

    test_network.py COMMAND [ARGUMENT…]
"""

import contextlib
import os
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import strace  # noqa: E402

SKIPPED = 77  # told to ctest
# In which an address is named to the kernel; the others tell what it answers.
NAMING = ("connect", "bind", "sendto", "sendmsg", "sendmmsg")


def watch(tracer, log, ended, command):
    """Runs the command; gives back its status. What it leaves behind, like the holder of the clipboard, is let go."""
    told = ["/bin/sh", "-c", '"$@"; echo $? >"$0.part"; mv "$0.part" "$0"', ended, *command]
    # Told to write to a file, it would take no signal to end.
    traced = subprocess.Popen([tracer, "--follow-forks", "--seccomp-bpf", "--interruptible=waiting", "-qq", "-s", "0",
                               "-e", "trace=" + strace.CALLS, "-e", "signal=none", "-o", log, *told])
    while traced.poll() is None and not os.path.exists(ended):
        with contextlib.suppress(subprocess.TimeoutExpired):
            traced.wait(timeout=0.2)
    traced.terminate()
    traced.wait()
    with open(ended, encoding="ascii") as file:
        return int(file.read())


def main(command):
    tracer = shutil.which("strace")
    if not tracer:
        print("strace is not installed")
        return SKIPPED
    if subprocess.run([tracer, "-o", os.devnull, "true"], stderr=subprocess.DEVNULL).returncode != 0:
        print("strace may not look at other programs here")
        return SKIPPED
    with tempfile.TemporaryDirectory() as folder:
        log = os.path.join(folder, "network")
        status = watch(tracer, log, os.path.join(folder, "status"), command)
        with open(log, encoding="utf-8", errors="replace") as file:
            found = strace.touched(file)
    named = {one: times for one, times in found.items() if one.call in NAMING}
    strace.tell(named)
    if not named:
        print("strace has seen nothing")
        return 1
    away = [one for one in named if not strace.is_here(one)]
    for one in away:
        print(f"leaves this computer: {one}")
    if status != 0:
        print(f"{command[0]} ended with {status}")
    return 1 if away or status else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
