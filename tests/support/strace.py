"""What strace writes down about sockets: every address that a program names to the kernel, or is told by it."""

import collections
import ipaddress
import os
import re

# For touched() to know the programs: who starts whom, and as what.
CALLS = "%network,execve,clone,clone3,fork,vfork"
FAMILY = re.compile(r"sa_family=(AF_\w+)([^}]*)")
# The kernel's own: news of the network's cards go in, nothing goes out. A connection to nothing is the end of one.
WITHIN = {"AF_UNIX", "AF_LOCAL", "AF_NETLINK", "AF_UNSPEC"}

Touched = collections.namedtuple("Touched", "program call family address port")


def addresses(line):
    """Family, address and port of every socket address in a traced call."""
    for family, rest in FAMILY.findall(line):
        number = re.search(r'(?:inet_addr\(|inet_pton\(AF_INET6, )"([^"]+)"', rest)
        path = re.search(r'sun_path=(@?"[^"]*")', rest)
        port = re.search(r"sin6?_port=htons\((\d+)\)", rest)
        yield family, number[1] if number else path[1] if path else "", int(port[1]) if port else None


def touched(lines):
    """How often every address is in a trace, by the program and the call that it is in.

    A process is named by the program that it last became, or else by the one that started it. (What strace itself
    tells of a process may still be the name from before.)
    """
    calls = [match.groups() for match in (re.match(r"(\d+) +(?:<\.\.\. )?(\w+)(.*)", line) for line in lines) if match]
    parents = {}
    for pid, call, rest in calls:
        child = re.search(r" = (\d+)$", rest)
        if call in ("clone", "clone3", "fork", "vfork") and child:
            parents[child[1]] = pid
    became, coming, found = {}, {}, collections.Counter()

    def program(pid):
        while pid not in became and pid in parents:
            pid = parents[pid]
        return became.get(pid, "unknown")

    for pid, call, rest in calls:
        if call == "execve":
            path = re.match(r'\("([^"]*)"', rest)
            coming[pid] = os.path.basename(path[1]) if path else coming.get(pid)
            if re.search(r" = 0$", rest):
                became[pid] = coming[pid]
        else:
            found.update(Touched(program(pid), call, *address) for address in addresses(rest))
    return found


def is_here(one):
    """Sockets in the file system, the kernel's own messages, and loopback."""
    if one.family in WITHIN:
        return True
    if one.family not in ("AF_INET", "AF_INET6") or not one.address:
        return False
    there = ipaddress.ip_address(one.address)
    # A server that a test listens with, or a socket that takes no address yet, names none to go to.
    return there.is_loopback or (one.call == "bind" and there.is_unspecified)


def tell(found):
    for one, times in sorted(found.items(), key=str):
        port = "" if one.port is None else f" port {one.port}"
        print(f"  {times:4} × {one.family} {one.address or '-'}{port} ({one.call} by {one.program})")
