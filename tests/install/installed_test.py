"""What is installed, used by other projects.

    installed_test.py BUILD CMAKE COMPILER GENERATOR [SANITIZE]

BUILD is the build tree; the projects are built with COMPILER and -fsanitize=SANITIZE, as it was.
"""

import json
import re
import sys

import installed_tree
from installed_tree import SERVICE, SOURCE, Tree, run

PLACES = """
bin/hbbtvctl bin/hbbtv-sim bin/hbbtv-browser bin/vantorel.hardware.hbbtv@1.0-service
LIB/libhidlhost.so LIB/libhidlhost.so.1 LIB/vantorel.hardware.hbbtv@1.0.so LIB/vantorel.hardware.hbbtv@1.0.so.1
LIB/hidl-host/vantorel.hardware.hbbtv@1.0-impl.so LIB/libhbbtv_wire.a LIB/libhbbtv_common.a
LIB/cmake/hbbtv/hbbtvConfig.cmake LIB/cmake/hbbtv/hbbtvConfigVersion.cmake
LIB/pkgconfig/hidl-host.pc LIB/pkgconfig/hbbtv-client.pc LIB/pkgconfig/hbbtv-wire.pc
include/hbbtv/vantorel/hardware/hbbtv/1.0/IVideoBroadcast.h include/hbbtv/wire/message.h
include/hidl-host/hidl/HidlSupport.h include/hidl-host/android/hidl/base/1.0/IBase.h
share/hidl/vantorel/hardware/hbbtv/1.0/types.hal share/hidl/vantorel/hardware/hbbtv/1.0/IMtm.hal
share/hidl/android/hidl/base/1.0/IBase.hal
share/hbbtv/protocol/channel.json share/hbbtv/schemas/hbbtvctl.schema.json
share/hbbtv/wireshark/hbbtv.lua share/hbbtv/wireshark/hbbtv-extcap
share/man/man1/hbbtvctl.1 share/man/man1/hbbtvctl-call.1 share/man/man1/hbbtv-sim.1 share/man/man1/hbbtv-browser.1
share/man/man8/vantorel.hardware.hbbtv@1.0-service.8
share/bash-completion/completions/hbbtvctl share/bash-completion/completions/hbbtv-sim
share/zsh/site-functions/_hbbtvctl share/zsh/site-functions/_hbbtv-sim
share/fish/vendor_completions.d/hbbtvctl.fish share/fish/vendor_completions.d/hbbtv-sim.fish
share/doc/hbbtv/README.md share/doc/hbbtv/LICENSE share/doc/hbbtv/docs/wire-protocol.md
share/doc/hbbtv/examples/client/main.cpp share/doc/hbbtv/examples/platform/platform.py
""".split()

VERSION = re.search(r"VERSION ([0-9.]+)", (SOURCE / "CMakeLists.txt").read_text().partition("project(")[2]).group(1)


class Installed(Tree):
    def dynamic(self, file, tag):
        listed = self.check("readelf", "--dynamic", "--wide", file)
        return re.findall(rf"\({tag}\).*\[(.*)\]", listed)

    def test_everything_is_in_its_place(self):
        lib = str(self.libraries.relative_to(self.prefix))
        missing = [place for place in PLACES if not (self.prefix / place.replace("LIB", lib)).exists()]
        self.assertEqual(missing, [])
        hals = {path.name for path in (SOURCE / "hbbtv/1.0").glob("*.hal")}
        self.assertEqual({path.name for path in (self.prefix / "share/hidl/vantorel").rglob("*")
                          if path.is_file()}, hals)
        protocols = {path.name for path in (SOURCE / "protocol").glob("*.json")}
        self.assertEqual({path.name for path in (self.prefix / "share/hbbtv/protocol").iterdir()}, protocols)

    def test_libraries_have_the_version_as_soname(self):
        major = VERSION.split(".")[0]
        for name in ("libhidlhost.so", "vantorel.hardware.hbbtv@1.0.so"):
            library = self.libraries / name
            self.assertEqual(self.dynamic(library, "SONAME"), [f"{name}.{major}"])
            self.assertEqual(library.resolve().name, f"{name}.{VERSION}")

    def test_nothing_names_the_place_of_the_build_or_of_the_installation(self):
        texts = [path for path in self.prefix.rglob("*") if path.suffix in (".cmake", ".pc")]
        self.assertLess(5, len(texts))
        for place in (SOURCE, installed_tree.build, self.first):
            self.assertEqual([path for path in texts if str(place) in path.read_text()], [])
        binaries = [path for path in self.prefix.rglob("*") if path.is_file() and not path.is_symlink()
                    and path.read_bytes()[:4] == b"\x7fELF"]
        self.assertEqual(len(binaries), 7)
        for path in binaries:
            if path.name == "hbbtv-sim":
                self.assertEqual(self.dynamic(path, "RUNPATH"), [])
                continue
            for directory in self.dynamic(path, "RUNPATH")[0].split(":"):
                self.assertRegex(directory, r"^(\$ORIGIN/|/usr/lib/.*/android$)", path)

    def test_programs_print_their_version(self):
        for name in ("hbbtvctl", "hbbtv-sim", "hbbtv-browser", SERVICE):
            self.assertEqual(self.check(self.program(name), "--version"), f"{name} {VERSION}\n")

    def test_the_service_finds_its_implementation_with_no_variable_set(self):
        with self.platform(), self.service():
            printed = self.check(self.program("hbbtvctl"), "call", "IChannelConfig.GetCurrentChannel")
        self.assertRegex(printed, r"^status   0\nchannel  0x")

    def build_by_cmake(self, source, *arguments):
        built = self.sockets / "build"
        self.check(installed_tree.cmake, "-S", source, "-B", built, f"-DCMAKE_PREFIX_PATH={self.prefix}", *arguments)
        self.check(installed_tree.cmake, "--build", built)
        return built

    def expect_client(self, client):
        """The client tunes, listens, and is the browser of one tab."""
        missing = run(client, env=self.environment)
        self.assertEqual((missing.returncode, missing.stderr), (3, "the service is not running\n"))
        with self.platform(), self.service():
            printed = self.check(client)
        for line in ("tune: status 0", "event: tuned to channel 0x", "event: play state 2, error 0",
                     "tab: create it for http://arte.example/hbbtv/", "tab: load http://arte.example/hbbtv/",
                     "destroy: status 0"):
            self.assertIn("\n" + line, printed)

    def test_a_client_is_built_by_cmake(self):
        self.expect_client(self.build_by_cmake(self.prefix / "share/doc/hbbtv/examples/client") / "hbbtv-example-client")

    def test_a_client_is_built_by_pkg_config(self):
        self.environment["PKG_CONFIG_PATH"] = str(self.libraries / "pkgconfig")
        sources = self.prefix / "share/doc/hbbtv/examples/client"
        self.check("make", "-f", sources / "Makefile", f"VPATH={sources}", cwd=self.sockets)
        self.expect_client(self.sockets / "hbbtv-example-client")

    def expect_request(self, program):
        request = json.loads(self.check(program))
        self.assertEqual(request, {"type": 12, "method": 13, "c_handle": "0x4f10"})

    def test_a_program_of_the_wire_is_built_by_cmake(self):
        self.expect_request(self.build_by_cmake(SOURCE / "tests/install/wire_user") / "wire-user")

    def test_a_program_of_the_wire_is_built_by_pkg_config(self):
        self.environment["PKG_CONFIG_PATH"] = str(self.libraries / "pkgconfig")
        flags = self.check("pkg-config", "--cflags", "--libs", "hbbtv-wire").split()
        sanitizers = self.environment.get("CXXFLAGS", "").split()
        program = self.sockets / "wire-user"
        self.check(installed_tree.compiler, "-std=c++17", *sanitizers, SOURCE / "tests/install/wire_user/main.cpp",
                   *flags, "-o", program)
        self.expect_request(program)

    def test_another_major_version_is_refused(self):
        project = self.sockets / "project"
        project.mkdir()
        (project / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.25)\nproject(p LANGUAGES CXX)\nfind_package(hbbtv 2.0 REQUIRED)\n")
        refused = run(installed_tree.cmake, "-S", project, "-B", self.sockets / "build",
                      f"-DCMAKE_PREFIX_PATH={self.prefix}", env=self.environment)
        self.assertNotEqual(refused.returncode, 0)
        self.assertIn(f"version: {VERSION}", refused.stderr)


class Subdirectory(Tree):
    def test_it_brings_no_tests_and_no_warnings(self):
        built = self.sockets / "build"
        self.environment["CMAKE_GENERATOR"] = "Ninja"
        self.check(installed_tree.cmake, "-S", SOURCE / "tests/install/subdirectory_user", "-B", built,
                   f"-DHBBTV_SOURCE_DIR={SOURCE}")
        self.assertIn("Total Tests: 0\n", self.check("ctest", "--test-dir", built, "--show-only"))
        # The objects only: the libraries are those of the build, and take minutes.
        self.check("ninja", "-C", built, "wire_user", "client/CMakeFiles/hbbtv-example-client.dir/main.cpp.o",
                   "client/CMakeFiles/hbbtv-example-client.dir/tab.cpp.o")
        rules = self.check("ninja", "-C", built, "-t", "commands", "hbbtv-example-client")
        ours = [rule for rule in rules.splitlines() if f"-c {SOURCE}/host/src/" in rule]
        self.assertLess(10, len(ours))
        self.assertEqual([rule for rule in ours if "-Werror" in rule or " -w " not in rule], [])
        install = (built / "cmake_install.cmake").read_text() + (built / "hbbtv/cmake_install.cmake").read_text()
        self.assertNotIn("hbbtvConfig.cmake", install)


class Platform(Tree):
    """examples/platform, asked by the library and by hbbtvctl."""

    def ctl(self, *arguments):
        return self.check(self.program("hbbtvctl"), *arguments)

    def platform_example(self):
        return self.running(sys.executable, "-B", self.prefix / "share/doc/hbbtv/examples/platform/platform.py",
                            until="ready")

    def current_channel(self):
        return json.loads(self.ctl("call", "IChannelConfig.GetCurrentChannel", "--json"))["results"]["channel"]

    def test_answers_calls_of_its_families(self):
        with self.platform_example(), self.service():
            channel = self.current_channel()
            self.assertEqual(self.ctl("call", "IChannel.GetName", f"channel={channel}"), 'status  0\nname    "First"\n')
            self.ctl("call", "IChannel.SetName", f"channel={channel}", "name=Première")
            self.assertIn("Première", self.ctl("call", "IChannel.GetName", f"channel={channel}"))
            self.ctl("call", "IChannel.Release", f"channel={channel}")
            released = run(self.program("hbbtvctl"), "call", "IChannel.GetName", f"channel={channel}",
                           env=self.environment)
            self.assertEqual(released.returncode, 1)

    def test_answers_requests_without_a_service(self):
        with self.platform_example():
            self.assertEqual(json.loads(self.ctl("send", "channel_config.GetCurrentChannel", "--json"))["reply"]["ret"], 0)

    def test_refuses_what_it_does_not_know_and_continues(self):
        with self.platform_example(), self.service():
            for call in (("IChannel.GetCcid", "channel=0x4f10"), ("IChannel.GetName", "channel=0x123")):
                refused = run(self.program("hbbtvctl"), "call", *call, env=self.environment)
                self.assertEqual(refused.returncode, 1, refused.stdout + refused.stderr)
            self.assertLess(0, self.current_channel())

    def test_sends_its_event_to_a_client(self):
        with self.platform_example(), self.service():
            channel = self.current_channel()
            with self.running(self.program("hbbtvctl"), "listen", "channel_config", "--json",
                              until="listening") as listener:
                self.ctl("call", "IChannel.SetName", f"channel={channel}", "name=x")
                log = self.sockets / "hbbtvctl.log"
                self.wait(lambda: "OnChannelConfigEvent" in log.read_text() or listener.poll() is not None)
            self.assertIn("OnChannelConfigEvent", log.read_text())


if __name__ == "__main__":
    installed_tree.main()
