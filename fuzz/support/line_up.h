// A small line-up with one of everything that a line-up can have.
#pragma once

namespace hbbtv::fuzz {

inline constexpr const char* kLineUp = R"({
"networks": [{"id": "sat", "name": "Satellite", "position": "19.2E", "delivery": "DVB_S", "nid": 1}],
"services": [
    {"name": "One", "network": "sat", "onid": 1, "tsid": 1, "sid": 1, "type": "TV", "number": 1, "definition": "HD",
     "provider": "P", "longName": "One HD", "genres": ["General"], "frequency": 11361750,
     "components": [
        {"type": "video", "tag": 1, "pid": 101, "encoding": "AVC_HD_25"},
        {"type": "audio", "tag": 2, "pid": 102, "encoding": "AC3", "language": "deu", "channels": 5},
        {"type": "audio", "tag": 3, "pid": 103, "encoding": "MPEG1_L2", "language": "fra", "audioDescription": true},
        {"type": "subtitle", "tag": 5, "pid": 205, "encoding": "DVB-SUBT", "language": "deu"}],
     "applications": [
        {"name": "A", "organisation": 17, "application": 1, "control": "autostart", "url": "http://a.example/i.html",
         "boundaries": ["http://a.example/"]},
        {"name": "B", "organisation": 17, "application": 2, "control": "present", "url": "http://a.example/text.html",
         "keySets": ["NUMERIC", "NAVIGATION"], "otherKeys": ["TELETEXT"]}]},
    {"name": "Scrambled", "network": "sat", "onid": 1, "tsid": 1, "sid": 3, "type": "TV", "number": 3,
     "access": "scrambled", "components": [{"type": "video", "tag": 1, "pid": 1, "encoding": "AVC_HD_25"}]},
    {"name": "Dark", "network": "sat", "onid": 1, "tsid": 1, "sid": 4, "type": "TV", "number": 4, "reception": "none",
     "components": [{"type": "video", "tag": 1, "pid": 1, "encoding": "AVC_HD_25"}]},
    {"name": "Locked", "network": "sat", "onid": 1, "tsid": 1, "sid": 5, "type": "RADIO", "number": 5,
     "access": "locked", "components": [{"type": "video", "tag": 1, "pid": 1, "encoding": "AVC_HD_25"}]},
    {"name": "Hidden", "network": "sat", "onid": 1, "tsid": 1, "sid": 9, "type": "TV", "listed": false,
     "components": [{"type": "video", "tag": 1, "pid": 1, "encoding": "AVC_HD_25"}]}],
"favouriteLists": [{"id": "fav:1", "name": "F", "services": [{"onid": 1, "tsid": 1, "sid": 1}]}]})";

}  // namespace hbbtv::fuzz
