#include "file_seeds.h"

#include "input.h"
#include "line_up.h"
#include "package_values.h"

namespace hbbtv::fuzz {

namespace {

const char* const kLamedb =
    "eDVB services /4/\ntransponders\n00c00000:03fb:0001\n\ts 11493750:22000000:1:4:192:2:0:1:2:0:2\n/\n"
    "eeee0000:1050:233a\n\tt 490000000:0:5:5:2:1:0:0:0:0:0:0\n/\nffff0000:0019:f001\n\tc 394000:6900:2:5:0:0:0\n/\n"
    "end\nservices\n283d:00c00000:03fb:0001:25:0\nDas Erste HD\n"
    "p:ARD,c:0013ed,c:0113ee,c:0213f0,c:0313ed,c:0413f2,c:050001,f:40\n"
    "2ee3:eeee0000:1050:233a:2:0\nRadio\np:B\nend\n";

const char* const kLamedb5 =
    "eDVB services /5/\nt:00c00000:03fb:0001,s:11493750:22000000:1:4:192:2:0:1:2:0:2\n"
    "s:283d:00c00000:03fb:0001:25:0:0,\"Das Erste HD\",p:ARD,c:0013ed,f:40\n";

const char* const kM3u =
    "#EXTM3U url-tvg=\"http://guide.example/epg.xml\"\n"
    "#EXTINF:-1 tvg-id=\"DasErste.de\" tvg-name=\"ARD\" tvg-chno=\"1\" tvg-logo=\"http://l.example/a,b.png\" "
    "group-title=\"a;b\",ARD\nrtp://239.0.0.1:5000\n#EXTINF:-1 tvg-chno=\"12\",arte, fran\xc3\xa7\n"
    "http://s.example/a.m3u8?x=1\n#EXTGRP:Kultur\n#EXTINF:-1 radio=\"true\" "
    "tvg-name=\"Dlf\",\nhttp://s.example/r.mp3\n";

const char* const kBouquet =
    "#NAME Mine (TV)\n#SERVICE 1:0:19:283D:3FB:1:C00000:0:0:0:\n#SERVICE 1:64:0:0:0:0:0:0:0:0::-- News --\n"
    "#DESCRIPTION -- News --\n#SERVICE 1:0:2:2EE3:1050:233A:EEEE0000:0:0:0:http%3a//s.example:Name\n"
    "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.a.tv\" ORDER BY bouquet\n";

const char* const kXmltv =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?><!DOCTYPE tv SYSTEM \"xmltv.dtd\"><tv>"
    "<channel id=\"one.tv\"><display-name>One</display-name></channel>"
    "<programme channel=\"one.tv\" start=\"20260329010000 +0100\" stop=\"20260329040000 +0200\">"
    "<title lang=\"de\">T &amp; U</title><sub-title>S</sub-title><desc lang=\"en\">D&#228;</desc>"
    "<credits><director>A</director><actor role=\"r\">B</actor></credits><category lang=\"en\">News</category>"
    "<episode-num system=\"xmltv_ns\">1.2/3.0/1</episode-num><rating system=\"DVB-SI\"><value>12</value></rating>"
    "<video><aspect>16:9</aspect><quality>HDTV</quality></video><audio><stereo>dolby</stereo></audio>"
    "<subtitles type=\"teletext\"><language>deu</language></subtitles><language>fr</language></programme>"
    "<programme channel=\"one.tv\" start=\"202603290400\"><title>B</title></programme></tv>";

const char* const kCarousel =
    R"({"componentTag": 23, "service": {"onid": 1, "tsid": 1019, "sid": 10301}, "delay": "100ms", "sizeLimit": 10,
"files": [{"path": "app/index.html", "delay": "2s", "version": 3, "newVersionEvery": "30s", "sizeLimit": 65536}],
"applications": [{"organisation": 19, "application": 501, "start": "app/index.html"}]})";

const char* const kStreamEvents =
    R"([{"at": "60ms", "name": "quiz", "text": "K\u00f6ln"}, {"every": "1s", "name": "q", "data": "4A6Fff21"},
{"at": "0ms", "url": "dvb://1.1.1/sevent", "error": true}])";

const char* const kPlay =
    "step \"Walk\"\nIChannelConfig.GetChannelList() -> 0, $all\nIChannelList.GetLength($all) -> 0, 35\n"
    "for [$index, $name] in [[0, \"A {$all}\"], [5, \"B\"]]\n    IChannelList.Item($all, $index) -> 0, $channel\n"
    "    IChannel.GetName($channel) -> 0, $name within 2s\nend\n"
    "tell \"zap next\"\nevent onPlayStateChange($channel, _, ~\"x\")\nlet $x = {a: [1, -2.5e3, true, null]}\n"
    "print \"{$x:time} {$x.a:26}\"\nwait 10ms\nfinally\nquiet\n    tell \"close-tabs\"\nend\n";

}  // namespace

std::vector<std::string> FileSeeds() {
    return {std::string("line-up\n") + kLineUp,
            std::string("line-up\n") + kLamedb,
            std::string("line-up\n") + kLamedb5,
            std::string("line-up\n") + kM3u,
            std::string("bouquet\n") + kBouquet,
            std::string("xmltv\n") + kXmltv,
            std::string("carousel\n") + kCarousel,
            "carousel-url\ndvb://1.3fb.283d.17/app/%69ndex.html?a=b#c",
            "carousel-url\ndvb://current.ait/13.1f5?x",
            std::string("stream-events\n") + kStreamEvents,
            "xml-signalling\n<mhp:URLBase> http://a.example/</mhp:URLBase><mhp:applicationLocation "
            "a=\"b\">index.html?a=1&amp;b</mhp:applicationLocation>"};
}

std::vector<std::string> ValueSeeds() {
    std::vector<std::string> seeds{std::string("play\n") + kPlay,
                                   "duration\n300ms",
                                   "pointer\n0x1fffffffff",
                                   "utf8\n\xc3\xbc\xe2\x82\xac\xf0\x9f\x98\x80\xff\x1b[0m",
                                   "type vec<string>\n[\"a\", \"b,c\"]",
                                   "type vec<int32_t>\n1,-2,0x7fffffff",
                                   "type double\n-1.5e300",
                                   "type uint64_t\n18446744073709551615",
                                   "type bool\ntrue"};
    for (const auto& type : Package::Get().types) {
        seeds.push_back("type " + type->name + "\n" + UsualValue(*type).toStyledString());
    }
    for (const char* const method : {"IVideoBroadcast.CreateChannel_2", "IChannel.GetName", "ISearchManager.SetQuery",
                                     "IVideoBroadcast.SetWindow", "IMtm.OnTabLoadFailed"}) {
        seeds.push_back(std::string("arguments ") + method + "\n1\nname=2\nurl=http://a.example/?b=c\n@@a\n[1,2]\n");
        seeds.push_back(std::string("object ") + method + "\n{\"vb\": \"0x10\", \"tabId\": 3, \"url\": \"u\"}");
    }
    return seeds;
}

std::vector<std::string> TrafficSeeds() {
    const std::string head =
        R"({"recording":1,"program":"p","directory":"d","zone":"+01:00","wall_us":5,"monotonic_us":6})";
    const std::string exchange =
        R"({"number":1,"kind":"exchange","wall_us":1795348045458629,"monotonic_us":6,"connection":3,"socket":)"
        R"("service_plugin_to_hbbtv_vb_chn","family":"channel","event":false,"operation":"GetName","code":13,"message":)"
        R"({"type":2,"port":2,"size":50,"json":{"c_handle":"0x1000","method":13,"type":12}},"reply":{"type":3,"port":2,)"
        R"("size":20,"json":{"name":"Das Erste HD","ret":0,"serial":"DE-118842","url":"http://a.example/?b=c#d"}},)"
        R"("duration_us":700,"status":0,"library":{"pid":4711,"uid":1000,"name":"service"}})";
    const std::string other =
        R"({"number":2,"kind":"damaged","wall_us":7,"monotonic_us":8,"message":{"type":9,"port":1,"size":4,"base64":)"
        R"("AAEC/w=="},"open":true,"rule":"drop","note":"cut"})";
    const std::string message =
        "[tolm](tolm_base_client.cpp:75) SendIpc: send msg:{\n\t\"method\" : 2,\n\t\"type\" : 19\n}\n, out_msg:{\n"
        "\t\"handle\" : \"0x1000\",\n\t\"ret\" : 0\n}\n[tolm](a.cpp:45) OnRecv: recv msg:{\n\t\"event\" : 0\n}\n"
        " in m_ipc_id(35) port(3)\n[tolm](a.cpp:1) SendIpc: SendIpc failed 0 1 1\n";
    std::vector<std::string> seeds{"recording\n" + head + "\n" + exchange + "\n" + other + "\n",
                                   "log\n" + message,
                                   "log\n[ 11-22 12:47:25.458  4711: 4712 D/[ipc_base] ]\n" + message,
                                   "log\n11-22 12:47:25.500  4711  4712 I chatty  : expire 12 lines\n",
                                   "filter\nfamily:channel & !op:Get* | (ms>5 status!=0) & reply.name~\"erste\"",
                                   "filter\nhandle:0x1000 event | open error | app:11 | request.c_handle:0x1000"};
    for (const char* format : {"11-22 12:47:25.458  4711  4712 D [ipc_base]: ", "D/[ipc_base]( 4711): ",
                               "[ipc_base] D 11-22 12:47:25.458  4711  4712 "}) {
        std::string log;
        for (const std::string& line : LinesOf(message)) log += format + line + "\n";
        seeds.push_back("log\n" + log);
    }
    return seeds;
}

}  // namespace hbbtv::fuzz
