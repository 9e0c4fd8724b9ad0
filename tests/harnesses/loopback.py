"""A network name space that has loopback only, so that no harness can reach anything else."""

import ctypes
import fcntl
import os
import socket
import struct

_CLONE_NEWNET = 0x40000000
_CLONE_NEWUSER = 0x10000000
_SIOCSIFFLAGS = 0x8914
_IFF_UP_RUNNING = 0x41


def enter():
    """Moves this process and its children there. False where the system does not allow it."""
    user, group = os.getuid(), os.getgid()
    spaces = _CLONE_NEWNET if user == 0 else _CLONE_NEWNET | _CLONE_NEWUSER
    if ctypes.CDLL(None, use_errno=True).unshare(spaces) != 0:
        return False
    if user != 0:
        for name, text in (("setgroups", "deny"), ("uid_map", f"{user} {user} 1"),
                           ("gid_map", f"{group} {group} 1")):
            with open(f"/proc/self/{name}", "w", encoding="ascii") as file:
                file.write(text)
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as any_socket:
        fcntl.ioctl(any_socket, _SIOCSIFFLAGS, struct.pack("16sh14x", b"lo", _IFF_UP_RUNNING))
    return True
