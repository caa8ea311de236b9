#!/usr/bin/env python3
"""A platform of two families, channels and the channel configuration, without any code of the service library.

    platform.py [DIRECTORY]

Serves the request sockets of the two families in DIRECTORY (default: $TMPDIR, or /tmp) until it is interrupted, and
reports each new name of a channel as a change of the channel configuration. docs/platform.md explains it.
"""

import itertools
import json
import os
import pathlib
import signal
import socket
import struct
import sys
import threading

# Size of the payload, type, port: unsigned, in host byte order.
HEADER = struct.Struct("=III")
ONE_WAY, REQUEST, REPLY = 1, 2, 3
LONGEST = 16 << 20  # bytes of a payload; a longer one is not sent by a library

DONE, UNSUPPORTED, INVALID = 0, 1, 2  # any number but 0 is a failure, which the caller receives


class Television:
    """What both families know. Each connection has a thread, so the lock guards everything."""

    def __init__(self, report_change):
        self.lock = threading.Lock()
        self.report_change = report_change
        self.names = {1: "First", 2: "Second"}  # by service id
        self.current = 1
        self.handles = {}  # each is valid until it is released
        self.next_handle = itertools.count(0x4f10, 0x10)

    def give(self, sid):
        handle = hex(next(self.next_handle))
        self.handles[handle] = sid
        return handle


class ChannelConfiguration:
    socket_name, port, type = "service_plugin_to_hbbtv_vb_chn_config", 3, 19
    event_socket_name = "service_hbbtv_to_plugin_vb_chn_config"

    def __init__(self, television):
        self.television = television
        self.methods = {
            0: lambda request: {},  # RegisterCallback: events go to the library whether a client is registered or not
            1: lambda request: {},  # UnregisterCallback
            2: lambda request: {"handle": television.give(television.current)},  # GetCurrentChannel
        }


class Channels:
    socket_name, port, type = "service_plugin_to_hbbtv_vb_chn", 2, 12

    def __init__(self, television):
        self.television = television
        self.methods = {
            0: self.release,
            1: lambda request: {"channelType": 0},  # television
            8: lambda request: {"sid": self.sid(request)},
            12: self.set_name,
            13: lambda request: {"name": television.names[self.sid(request)]},
        }

    def sid(self, request):
        return self.television.handles[request["c_handle"]]

    def release(self, request):
        del self.television.handles[request["c_handle"]]
        return {}

    def set_name(self, request):
        self.television.names[self.sid(request)] = str(request["name"])
        self.television.report_change()
        return {}


def receive(connection):
    """Returns the type and the payload of the next message, or nothing at the end of the connection."""
    def exactly(count):
        data = b""
        while len(data) < count:
            piece = connection.recv(count - len(data))
            if not piece:
                return None
            data += piece
        return data

    header = exactly(HEADER.size)
    if header is None:
        return None
    size, kind, _ = HEADER.unpack(header)
    payload = exactly(size) if size <= LONGEST else None
    return None if payload is None else (kind, payload)


def message(kind, port, members):
    payload = json.dumps(members).encode()
    return HEADER.pack(len(payload), kind, port) + payload


def answer(family, payload):
    """Returns the members of the reply."""
    try:
        request = json.loads(payload)
        with family.television.lock:
            method = family.methods.get(request["method"])
            if request["type"] != family.type or method is None:
                return {"ret": UNSUPPORTED}
            return {"ret": DONE, **method(request)}
    except (ValueError, KeyError, TypeError):  # not JSON, a member is missing, an unknown handle
        return {"ret": INVALID}


def serve_connection(family, connection):
    with connection:
        while (received := receive(connection)) is not None:
            kind, payload = received
            reply = answer(family, payload)
            if kind == REQUEST:
                connection.sendall(message(REPLY, family.port, reply))


def serve(family, directory):
    path = directory / family.socket_name
    path.unlink(missing_ok=True)
    listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
    listener.bind(str(path))
    listener.listen()

    def accept():
        while True:
            connection, _ = listener.accept()
            threading.Thread(target=serve_connection, args=(family, connection), daemon=True).start()

    threading.Thread(target=accept, daemon=True).start()
    return path


class Events:
    """The connection to the socket that the library serves. Nothing is sent while no library is there."""

    def __init__(self, path):
        self.path = path
        self.connection = None

    def send(self, port, members):
        for _ in range(2):  # the first connection may be that to a library that has ended
            try:
                if self.connection is None:
                    self.connection = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
                    self.connection.connect(str(self.path))
                self.connection.sendall(message(ONE_WAY, port, members))
                return
            except OSError:
                self.connection.close()
                self.connection = None


def directory():
    return pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else os.environ.get("TMPDIR") or "/tmp")


def main(families=(ChannelConfiguration, Channels)):
    events = Events(directory() / ChannelConfiguration.event_socket_name)
    television = Television(lambda: events.send(ChannelConfiguration.port, {"event": 0, "reserved": "\x01"}))
    signals = {signal.SIGINT, signal.SIGTERM}
    signal.pthread_sigmask(signal.SIG_BLOCK, signals)
    paths = [serve(family(television), directory()) for family in families]
    print("ready", flush=True)
    signal.sigwait(signals)
    for path in paths:
        path.unlink(missing_ok=True)


if __name__ == "__main__":
    main()
