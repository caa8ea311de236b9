#!/usr/bin/env python3
"""The platform of examples/platform with all sockets, and with video/broadcast objects that can change the channel.

    platform_in_python.py [DIRECTORY]

Like the example, it shares no code with the rest of the project. Families that it does not know reply with a failure.
"""

import importlib.util
import os
import pathlib
import sys
import threading

sys.dont_write_bytecode = True
EXAMPLE = pathlib.Path(__file__).resolve().parents[3] / "examples/platform/platform.py"
specification = importlib.util.spec_from_file_location("example", EXAMPLE)
example = importlib.util.module_from_spec(specification)
specification.loader.exec_module(example)

# Ports of the families that reply with a failure, by the names of their sockets.
OTHERS = {"plugin_to_hbbtv_apm": 1, "plugin_to_hbbtv_app_priv": 17, "plugin_to_hbbtv_av_com": 14,
          "plugin_to_hbbtv_av_ctrl": 19, "plugin_to_hbbtv_cap": 10, "plugin_to_hbbtv_vb_chn_list": 4,
          "plugin_to_hbbtv_conf": 12, "dsmcc_to_hbbtv": 2, "plugin_to_hbbtv_vb_fav_list": 5,
          "plugin_to_hbbtv_vb_fav_list_collect": 6, "mtm_to_hbbtv": 1, "plugin_to_hbbtv_pcm": 16,
          "plugin_to_hbbtv_program": 13, "plugin_to_hbbtv_sm": 8}

CONNECTING, PRESENTING = 1, 2


class Other:
    type, methods = None, {}

    def __init__(self, name, television):
        self.socket_name, self.port, self.television = "service_" + name, OTHERS[name], television


class LocalSystem:
    socket_name, port, type = "service_plugin_to_hbbtv_local_system", 11, 6

    def __init__(self, television):
        self.television = television
        self.methods = {
            0: lambda request: {"deviceID": "7f3c-anna"},
            12: lambda request: {"serialNumber": "PY-2204-118842"},
        }


class VideoBroadcast:
    socket_name, port, type = "service_plugin_to_hbbtv_vb", 7, 3

    def __init__(self, television):
        self.television = television
        self.events = example.Events(example.directory() / "service_hbbtv_to_plugin_vb")
        self.contexts = {}  # by object
        self.methods = {
            0: self.create,
            1: lambda request: {},  # Release: the object can be used again
            2: self.destroy,
            3: self.register,
            4: lambda request: {},  # UnregisterCallback
            7: lambda request: {"state": PRESENTING},
            8: lambda request: {"channel": television.give(television.current)},
            11: self.set_channel,
        }

    def create(self, request):
        handle = self.television.give(None)
        self.contexts[handle] = request["context"]
        return {"vb_handle": handle}

    def destroy(self, request):
        del self.contexts[request["vb_handle"]]
        return {}

    def register(self, request):
        self.contexts[request["vb_handle"]] = request["context"]
        return {}

    def set_channel(self, request):
        context, channel = self.contexts[request["vb_handle"]], request["channel"]
        self.television.current = self.television.handles[channel]
        threading.Timer(0.02, self.report, [context, channel]).start()  # after the reply
        return {}

    def report(self, context, channel):
        with self.television.lock:
            self.send(context, 1, state=CONNECTING, error=0)
            self.send(context, 2, channelHandle=channel, viewerChannelHandle=channel, quiet=0)
            self.send(context, 1, state=PRESENTING, error=0)

    def send(self, context, event, **members):
        self.events.send(self.port, {"type": "videobroadcast", "event": event, "context": context, **members})


def other(name):
    return lambda television: Other(name, television)


if __name__ == "__main__":
    os.umask(0)  # every user may connect
    example.main([example.ChannelConfiguration, example.Channels, LocalSystem, VideoBroadcast, *map(other, OTHERS)])
