"""The platform's own build system on our Android.bp files, with stubs of the platform's modules: it accepts them, it
would install and compile what a television needs, and it refuses wrong files."""

import json
import os
import re
import shutil

from .common import LIBRARY, NAME, ROOT, Problem, must, run
from .tools import BLUEPRINTS

GO_CODE = "/usr/share/gocode"
PRODUCT = "out/soong/target/product/tv"
VENDOR = f"{PRODUCT}/vendor"
TEST = "VtsHalHbbtvV1_0TargetTest"

VARIABLES = {
    "BuildNumberFile": "build_number.txt", "DeviceName": "tv", "DeviceVndkVersion": "current",
    "Platform_version_name": "11", "Platform_sdk_version": 30, "Platform_sdk_codename": "REL",
    "Platform_sdk_final": True, "Platform_version_active_codenames": [], "Platform_vndk_version": "30",
    "HostArch": "x86_64", "HostSecondaryArch": "x86",
    "DeviceArch": "arm64", "DeviceArchVariant": "armv8-a", "DeviceCpuVariant": "generic",
    "DeviceAbi": ["arm64-v8a"],
    "DeviceSecondaryArch": "arm", "DeviceSecondaryArchVariant": "armv7-a-neon",
    "DeviceSecondaryCpuVariant": "generic", "DeviceSecondaryAbi": ["armeabi-v7a"],
    "AAPTConfig": ["normal"], "Malloc_not_svelte": True,
}

INSTALLED = [
    f"{VENDOR}/bin/hw/{NAME}-service",
    f"{VENDOR}/lib/hw/{NAME}-impl.so",
    f"{VENDOR}/lib64/hw/{NAME}-impl.so",
    f"{VENDOR}/lib/{NAME}.so",
    f"{VENDOR}/lib64/{NAME}.so",
    f"{PRODUCT}/data/nativetest/{TEST}/{TEST}",
    f"{PRODUCT}/data/nativetest64/{TEST}/{TEST}",
    f"{PRODUCT}/data/fuzz/arm64/hbbtv_frames_fuzzer/vendor/hbbtv_frames_fuzzer",
    f"{PRODUCT}/data/fuzz/arm64/hbbtv_json_fuzzer/vendor/hbbtv_json_fuzzer",
]

FLAGS = ["-std=gnu++17", "-fno-exceptions", "-fno-rtti", "-DNDEBUG", "-D_FORTIFY_SOURCE=2", "-D__ANDROID_VNDK__",
         "-Wall", "-Wextra", "-Werror", "-Wno-deprecated-declarations"]


def build(work):
    """Builds the analyser from the sources of the Debian package; again only if it has changed."""
    source = ROOT / "device" / "check" / "soong" / "main.go"
    program = work / "out" / "soong" / ".bootstrap" / "bin" / "soong_build"
    if program.exists() and program.stat().st_mtime > source.stat().st_mtime:
        return program
    package = work / "go" / "src" / "bpcheck"
    package.mkdir(parents=True, exist_ok=True)
    shutil.copy(source, package)
    program.parent.mkdir(parents=True, exist_ok=True)
    must(["env", "GO111MODULE=off", f"GOPATH={work / 'go'}:{GO_CODE}", f"GOCACHE={work / 'go-cache'}",
          "go", "build", "-o", str(program), "bpcheck"])
    return program


def prepare(work):
    """A source tree of the platform's stubs and our package."""
    program = build(work)
    for folder in ("bionic", "platform/include", "prebuilts/ndk/current/sources/cxx-stl/llvm-libc++/libs", "package"):
        (work / folder).mkdir(parents=True, exist_ok=True)
    (work / "Android.bp").touch()
    (work / "build_number.txt").touch()
    for library in ("libc", "libm", "libdl"):
        (work / "bionic" / f"{library}.map.txt").touch()
    (work / "platform" / "liblog.map.txt").touch()
    (work / "bionic" / "Android.bp").write_text(must([str(program), "-stubs"], work))
    shutil.copy(ROOT / "device" / "check" / "soong" / "stubs.Android.bp", work / "platform" / "Android.bp")
    (work / "out" / "soong" / "soong.config").write_text("{}")
    (work / "out" / "soong" / "soong.variables").write_text(json.dumps(VARIABLES))
    files = ["Android.bp", "bionic/Android.bp", "platform/Android.bp"]
    for path in BLUEPRINTS:
        files.append(os.path.join("package", path.relative_to(ROOT)))
    (work / "list").write_text("\n".join(files) + "\n")
    shutil.rmtree(work / "package")
    for path in sorted({ROOT / "current.txt", *(ROOT / "hbbtv").rglob("*"), *(ROOT / "fuzz").rglob("*"),
                        *(ROOT / "common").rglob("*"), *BLUEPRINTS}):
        if path.is_file():
            copy = work / "package" / path.relative_to(ROOT)
            copy.parent.mkdir(parents=True, exist_ok=True)
            os.symlink(path, copy)


def analyse(work):
    """Returns the exit code and the output of the analysis, and the ninja file; empty when there is none."""
    ninja = work / "out" / "soong" / "build.ninja"
    ninja.unlink(missing_ok=True)
    code, output = run(["out/soong/.bootstrap/bin/soong_build", "-l", "list", "-b", "out/soong", "-n", "out", "-d",
                        "out/soong/build.ninja.d", "-globFile", "out/soong/globs.ninja", "-o", "out/soong/build.ninja",
                        "Android.bp"], work)
    return code, output, ninja.read_text() if ninja.exists() else ""


def compile_flags(ninja, source):
    """The flags of each variant that compiles a source file, with the variables that it uses."""
    variables = dict(re.findall(r"^(\S+) = (.*)$", ninja, re.MULTILINE))

    def expanded(text):
        while True:
            longer = re.sub(r"\$\{([^}]+)\}", lambda name: variables.get(name.group(1), ""), text)
            if longer == text:
                return text
            text = longer

    blocks = re.findall(rf"^build [^\n]*{re.escape(source)}[^\n]*\n((?:    .*\n)+)", ninja, re.MULTILINE)
    return [expanded(re.search(r"cFlags = (.*)", block).group(1)) for block in blocks if "cFlags = " in block]


def complaints(ninja):
    """What a television would lack, and where its files would be wrong."""
    installed = set(re.findall(rf"{PRODUCT}/[^ :$\n]+", ninja))
    yield from (f"{path} is not installed" for path in INSTALLED if path not in installed)
    yield from (f"{path} is in the system partition" for path in installed
                if path.startswith(f"{PRODUCT}/system/") and "hbbtv" in path)
    for source, variants in (("ipc/tolm_log.cpp", 2), ("Channel.cpp", 2), ("service.cpp", 1)):
        compiled = compile_flags(ninja.replace("$\n", ""), f"package/hbbtv/1.0/default/{source}")
        if len(compiled) < variants:
            yield f"{source} is compiled {len(compiled)} times, expected arm and arm64"
        for flags in compiled:
            yield from (f"{source} is compiled without {flag}" for flag in FLAGS if flag not in flags.split())
    for source in ("fuzz/targets/json.cpp", "common/text/json.cpp"):
        compiled = [flags.split() for flags in compile_flags(ninja.replace("$\n", ""), f"package/{source}")]
        if not any("-fsanitize=fuzzer-no-link" in flags for flags in compiled):
            yield f"{source} is not compiled for libFuzzer"
        # The last one counts.
        if any([flag for flag in flags if flag.endswith("exceptions")][-1] != "-fexceptions" for flags in compiled):
            yield f"{source} is compiled without exceptions"


def check_accepted(work):
    prepare(work)
    code, output, ninja = analyse(work)
    if code != 0:
        raise Problem(f"the build system refuses the Android.bp files\n{output}")
    found = list(complaints(ninja))
    if found:
        raise Problem("\n".join(found))


def changed(work, name, old, new):
    """Replaces text in the copy of a file for as long as the caller needs it."""
    path = work / "package" / name
    text = (ROOT / name).read_text()
    if old not in text:
        raise Problem(f"{name} does not contain {old}")
    path.unlink()
    path.write_text(text.replace(old, new))
    return path


BLUEPRINT = str((LIBRARY / "Android.bp").relative_to(ROOT))

FUZZ_BLUEPRINT = "fuzz/Android.bp"

# A file, a change, and the words of the refusal; none if the build system accepts it, and a television would lack
# something.
WRONG = [
    (BLUEPRINT, '"service.cpp"', '"services.cpp"', "does not exist"),
    (BLUEPRINT, '"liblog"', '"liblogg"', "liblogg"),
    (BLUEPRINT, "    vendor: true,\n", "", "missing variant"),
    (BLUEPRINT, 'init_rc: ["', 'init_rc: ["no-', "does not exist"),
    (BLUEPRINT, 'vintf_fragments: ["', 'vintf_fragments: ["no-', "does not exist"),
    (BLUEPRINT, '    relative_install_path: "hw",\n', "", None),
    (BLUEPRINT, '        "-Wextra",\n', "", None),
    (BLUEPRINT, 'whole_static_libs: ["libtolm_ipc"]', 'whole_static_libs: ["libtolm"]', "libtolm"),
    (BLUEPRINT, "shared_libs: [", "shared_library: [", "shared_library"),
    (FUZZ_BLUEPRINT, 'srcs: ["targets/json.cpp"]', 'srcs: ["targets/text.cpp"]', "does not exist"),
    (FUZZ_BLUEPRINT, '":hbbtv_fuzz_input"', '":hbbtv_fuzz_output"', "hbbtv_fuzz_output"),
    (FUZZ_BLUEPRINT, '        "-fexceptions",\n', "", None),
]


def check_refused(work):
    for blueprint, old, new, words in WRONG:
        path = changed(work, blueprint, old, new)
        code, output, ninja = analyse(work)
        path.unlink()
        os.symlink(ROOT / blueprint, path)
        if words is None and code == 0 and any(complaints(ninja)):
            continue
        if words is None or code == 0 or words not in output:
            raise Problem(f"not noticed: {old!r} replaced by {new!r} in {blueprint}\n{output}")


CHECKS = [("Soong", check_accepted), ("wrong Android.bp files", check_refused)]
