"""Nothing leaves the computer while a recording is transcribed, read, corrected, saved and thrown away.

Runs the given command under strace with all its children and prints every address that they name to the kernel: in
connecting, in sending, in binding. Only sockets in the file system, messages of the kernel itself and the computer's own
loopback are left alone; any other address fails.

    test_network.py COMMAND [ARGUMENT…]
"""

import contextlib
import ipaddress
import os
import re
import shutil
import subprocess
import sys
import tempfile
from collections import Counter

SKIPPED = 77  # told to ctest
CALLS = ("connect", "bind", "sendto", "sendmsg", "sendmmsg")
FAMILY = re.compile(r"sa_family=(AF_\w+)([^}]*)")
ADDRESS = re.compile(r'"([0-9a-fA-F:.]+)"')
CALL = re.compile(r"^\d+ +(?:<\.\.\. )?(\w+)")
# The kernel's own: news of the network's cards go in, nothing goes out. A connection to nothing is the end of one.
WITHIN = {"AF_UNIX", "AF_LOCAL", "AF_NETLINK", "AF_UNSPEC"}


def named(line):
    """What one line of strace names as (call, family, address), as often as it does."""
    call = CALL.match(line)
    if not call or call[1] not in CALLS:
        return []
    found = []
    for family, rest in FAMILY.findall(line):
        address = ADDRESS.search(rest)
        found.append((call[1], family, address[1] if address else ""))
    return found


def stays_here(call, family, address):
    if family in WITHIN:
        return True
    if family not in ("AF_INET", "AF_INET6") or not address:
        return False
    there = ipaddress.ip_address(address)
    # A server that a test listens with, or a socket that takes no address yet, names none to go to.
    return there.is_loopback or (call == "bind" and there.is_unspecified)


def report(lines):
    """Prints every address once, with how often it was named; gives back those that are not this computer's own."""
    seen = Counter(one for line in lines for one in named(line))
    for (call, family, address), times in sorted(seen.items()):
        print(f"{call:9} {family:10} {address or '-':40} {times}")
    return [one for one in seen if not stays_here(*one)]


def check_reader():
    """The lines as strace writes them; a reader that misses one would find nothing and be content."""
    out = '12 connect(7, {sa_family=AF_INET, sin_port=htons(443), sin_addr=inet_addr("93.184.216.34")}, 16) = -1 EINPROGRESS'
    six = ('12 sendto(9, "x", 1, 0, {sa_family=AF_INET6, sin6_port=htons(53), sin6_flowinfo=htonl(0), '
           'inet_pton(AF_INET6, "2001:db8::1", &sin6_addr), sin6_scope_id=0}, 28) = 1')
    unfinished = '12 connect(7, {sa_family=AF_INET, sin_port=htons(80), sin_addr=inet_addr("10.0.0.1")}, 16 <unfinished ...>'
    many = '12 sendmmsg(7, [{msg_hdr={msg_name={sa_family=AF_INET, sin_port=htons(53), sin_addr=inet_addr("9.9.9.9")}, msg_namelen=16'
    for line, address in ((out, "93.184.216.34"), (six, "2001:db8::1"), (unfinished, "10.0.0.1"), (many, "9.9.9.9")):
        assert [one[2] for one in named(line)] == [address], line
        assert not stays_here(*named(line)[0]), line
    for line in ('12 connect(3, {sa_family=AF_UNIX, sun_path="/run/bus"}, 110) = 0',
                 '12 connect(3, {sa_family=AF_INET, sin_port=htons(11434), sin_addr=inet_addr("127.0.0.1")}, 16) = 0',
                 '12 bind(5, {sa_family=AF_NETLINK, nl_pid=0, nl_groups=0x000451}, 12) = 0'):
        assert stays_here(*named(line)[0]), line


def watch(strace, log, ended, command):
    """Runs the command; gives back its status. What it leaves behind, like the holder of the clipboard, is let go."""
    told = ["/bin/sh", "-c", '"$@"; echo $? >"$0.part"; mv "$0.part" "$0"', ended, *command]
    # Told to write to a file, it would take no signal to end.
    tracer = subprocess.Popen([strace, "--follow-forks", "--seccomp-bpf", "--interruptible=waiting", "-qq", "-s", "0",
                               "-e", "trace=%network", "-e", "signal=none", "-o", log, *told])
    while tracer.poll() is None and not os.path.exists(ended):
        with contextlib.suppress(subprocess.TimeoutExpired):
            tracer.wait(timeout=0.2)
    tracer.terminate()
    tracer.wait()
    with open(ended, encoding="ascii") as file:
        return int(file.read())


def main(command):
    check_reader()
    strace = shutil.which("strace")
    if not strace:
        print("strace is not installed")
        return SKIPPED
    if subprocess.run([strace, "-o", os.devnull, "true"], stderr=subprocess.DEVNULL).returncode != 0:
        print("strace may not look at other programs here")
        return SKIPPED
    with tempfile.TemporaryDirectory() as folder:
        log = os.path.join(folder, "network")
        status = watch(strace, log, os.path.join(folder, "status"), command)
        with open(log, encoding="utf-8", errors="replace") as file:
            lines = file.readlines()
    away = report(lines)
    if not lines:
        print("strace has seen nothing")
        return 1
    for call, family, address in away:
        print(f"leaves this computer: {call} {family} {address}")
    if status != 0:
        print(f"{command[0]} ended with {status}")
    return 1 if away or status else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
