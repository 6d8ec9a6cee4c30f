"""The lines as strace writes them: a reader that misses one would find nothing and be content."""

import unittest

import strace

FAR = '{sa_family=AF_INET, sin_port=htons(443), sin_addr=inet_addr("93.184.216.34")}'
CONNECT = f"connect(7, {FAR}, 16) = -1 EINPROGRESS (Operation now in progress)"


class Addresses(unittest.TestCase):
    def one(self, call):
        found, = strace.touched(["12 " + call])
        return found

    def test_those_that_are_elsewhere(self):
        for call, name, address, port in (
                (CONNECT, "connect", "93.184.216.34", 443),
                ('sendto(9, "x", 1, 0, {sa_family=AF_INET6, sin6_port=htons(53), sin6_flowinfo=htonl(0), '
                 'inet_pton(AF_INET6, "2001:db8::1", &sin6_addr), sin6_scope_id=0}, 28) = 1', "sendto", "2001:db8::1", 53),
                ('connect(7, {sa_family=AF_INET, sin_port=htons(80), sin_addr=inet_addr("10.0.0.1")}, 16 <unfinished ...>',
                 "connect", "10.0.0.1", 80),
                ('<... recvfrom resumed>"", 9, 0, {sa_family=AF_INET, sin_port=htons(1), sin_addr=inet_addr("10.0.0.2")}, [16]) = 0',
                 "recvfrom", "10.0.0.2", 1),
                ('connect(7, {sa_family=AF_INET, sin_port=htons(80), sin_addr=inet_addr("0.0.0.0")}, 16) = 0', "connect", "0.0.0.0", 80),
                ('connect(7, {sa_family=AF_BLUETOOTH, sa_data="abc"}, 16) = 0', "connect", "", None),
                ('connect(7, {sa_family=AF_INET, sa_data="abc"}, 16) = 0', "connect", "", None)):
            one = self.one(call)
            self.assertEqual((one.call, one.address, one.port), (name, address, port), call)
            self.assertFalse(strace.is_here(one), call)

    def test_those_that_are_here(self):
        for call, address in (
                ('connect(3, {sa_family=AF_UNIX, sun_path="/run/bus"}, 110) = 0', '"/run/bus"'),
                ('bind(3, {sa_family=AF_UNIX, sun_path=@"hidden"}, 110) = 0', '@"hidden"'),
                ('connect(3, {sa_family=AF_INET, sin_port=htons(11434), sin_addr=inet_addr("127.0.0.1")}, 16) = 0', "127.0.0.1"),
                ('bind(3, {sa_family=AF_INET, sin_port=htons(0), sin_addr=inet_addr("0.0.0.0")}, 16) = 0', "0.0.0.0"),
                ('connect(3, {sa_family=AF_UNSPEC, sa_data="\\0"}, 16) = 0', ""),
                ("bind(5, {sa_family=AF_NETLINK, nl_pid=0, nl_groups=0x000451}, 12) = 0", "")):
            one = self.one(call)
            self.assertEqual(one.address, address, call)
            self.assertTrue(strace.is_here(one), call)

    def test_several_in_one_call(self):
        near = '{sa_family=AF_INET, sin_port=htons(53), sin_addr=inet_addr("127.0.0.53")}'
        found = strace.touched([f"12 sendmmsg(7, [{{msg_hdr={{msg_name={near}, msg_namelen=16}}}}, "
                                f"{{msg_hdr={{msg_name={FAR}, msg_namelen=16}}}}], 2, 0) = 2"])
        self.assertEqual(sorted(one.address for one in found), ["127.0.0.53", "93.184.216.34"])

    def test_lines_without_any(self):
        self.assertFalse(strace.touched(["12 socket(AF_INET, SOCK_STREAM, 0) = 7", "12 +++ exited with 0 +++", "", "12 "]))


class Programs(unittest.TestCase):
    def programs(self, *lines):
        return [one.program for one in strace.touched(lines)]

    def test_the_one_that_it_became(self):
        self.assertEqual(self.programs('12 execve("/bin/first", ["first"], 0x1 /* 9 vars */) = 0',
                                       '12 execve("/bin/last", ["last"], 0x1 /* 9 vars */ <unfinished ...>',
                                       "12 <... execve resumed>) = 0", "12 " + CONNECT), ["last"])

    def test_one_that_it_did_not_become(self):
        self.assertEqual(self.programs('12 execve("/bin/first", ["first"], 0x1 /* 9 vars */) = 0',
                                       '12 execve("/bin/none", ["none"], 0x1 /* 9 vars */) = -1 ENOENT (No such file)',
                                       "12 " + CONNECT), ["first"])

    def test_the_one_that_started_it(self):
        self.assertEqual(self.programs('12 execve("/bin/first", ["first"], 0x1 /* 9 vars */) = 0', "14 " + CONNECT,
                                       "12 clone(child_stack=NULL, flags=SIGCHLD <unfinished ...>",
                                       "12 <... clone resumed>, child_tidptr=0x7) = 13", "13 vfork() = 14"), ["first"])

    def test_one_that_nobody_knows(self):
        self.assertEqual(self.programs("12 " + CONNECT), ["unknown"])


if __name__ == "__main__":
    unittest.main()
