"""The files of a product's tree agree with each other and with the code. Needs no packages."""

import os
import re
import xml.etree.ElementTree

from .common import LIBRARY, NAME, PACKAGE, ROOT, Problem, interfaces, must_be_same

SERVICE = LIBRARY / f"{NAME}-service"


def cmake_sources(target, folder=LIBRARY):
    text = (folder / "CMakeLists.txt").read_text()
    found = re.search(rf"add_(?:library|executable)\({target}\b([^)]*)\)", text)
    return sorted(word for word in found.group(1).split() if word.endswith(".cpp"))


def soong_sources(module, folder=LIBRARY):
    text = (folder / "Android.bp").read_text()
    found = re.search(rf'name: "{re.escape(module)}",.*?\bsrcs: \[(.*?)\]', text, re.DOTALL)
    return sorted(re.findall(r'"([^"]+)"', found.group(1)))


def check_sources():
    everything = []
    for target, module in (("tolm_ipc", "libtolm_ipc"), ("hbbtv_service_objects", f"{NAME}-impl"),
                           ("hbbtv_service", f"{NAME}-service")):
        must_be_same(f"the sources of {target} in CMakeLists.txt and of {module} in Android.bp",
                     cmake_sources(target), soong_sources(module))
        everything += soong_sources(module)
    must_be_same("the sources in Android.bp and the files", sorted(everything),
                 sorted(str(path.relative_to(LIBRARY)) for path in LIBRARY.rglob("*.cpp")))


def check_fuzz_targets():
    """A television has those that need only the library."""
    folder = ROOT / "fuzz"
    must_be_same("the sources of fuzz_input in CMakeLists.txt and of hbbtv_fuzz_input in Android.bp",
                 sorted(os.path.normpath(f"fuzz/{name}") for name in cmake_sources("fuzz_input", folder)),
                 soong_sources("hbbtv_fuzz_input", ROOT))
    names = re.findall(r"add_fuzz_target\((\w+) tolm_ipc fuzz_input\)", (folder / "CMakeLists.txt").read_text())
    modules = re.findall(r'cc_fuzz \{\s*name: "hbbtv_(\w+)_fuzzer"', (folder / "Android.bp").read_text())
    must_be_same("the fuzz targets in CMakeLists.txt and in Android.bp", sorted(names), sorted(modules))
    for name in names:
        must_be_same(f"the sources of the fuzz target {name}", [f"targets/{name}.cpp"],
                     soong_sources(f"hbbtv_{name}_fuzzer", folder))


def hal_of(path, kind):
    """The hal element of a manifest or a matrix."""
    root = xml.etree.ElementTree.parse(path).getroot()
    hals = root.findall("hal")
    facts = (root.tag, root.get("type"), len(hals), hals[0].get("format"), hals[0].findtext("name"),
             hals[0].findtext("version"))
    expected = (*kind, 1, "hidl", "vantorel.hardware.hbbtv", "1.0")
    if facts != expected:
        raise Problem(f"{path}: {facts}, expected {expected}")
    return hals[0]


def instances(hal):
    return [(one.findtext("name"), [each.text for each in one.findall("instance")])
            for one in hal.findall("interface")]


def check_interfaces():
    names = interfaces()
    rc = (SERVICE.parent / f"{SERVICE.name}.rc").read_text()
    must_be_same("the interfaces and those of the .rc", names,
                 re.findall(rf"^    interface {re.escape(NAME)}::(\w+) default$", rc, re.MULTILINE))
    with_instance = [(name, ["default"]) for name in names]
    fragment = hal_of(SERVICE.parent / f"{SERVICE.name}.xml", ("manifest", "device"))
    must_be_same("the interfaces and those of the VINTF fragment", with_instance, instances(fragment))
    if fragment.findtext("transport") != "hwbinder":
        raise Problem("the VINTF fragment lacks the transport hwbinder")
    matrix = hal_of(ROOT / "device" / "compatibility_matrix.xml", ("compatibility-matrix", "framework"))
    must_be_same("the interfaces and those of the compatibility matrix", with_instance, instances(matrix))
    if matrix.get("optional") != "true":
        raise Problem("the compatibility matrix requires the package: a television without it would not pass")
    contexts = (ROOT / "device" / "sepolicy" / "hwservice_contexts").read_text()
    must_be_same("the interfaces and those of hwservice_contexts", names,
                 re.findall(r"^vantorel\.hardware\.hbbtv::(\w+) u:object_r:hal_hbbtv_hwservice:s0$", contexts,
                            re.MULTILINE))
    if len(contexts.splitlines()) != len(names):
        raise Problem("hwservice_contexts has other lines")
    must_be_same("the interfaces and those that service.cpp publishes", names,
                 re.findall(r"Publish<(I\w+)>\(\)", (LIBRARY / "service.cpp").read_text()))


def check_directory():
    """The same directory in the code, the .rc and the file contexts, and the program that is installed."""
    code = (LIBRARY / "ipc" / "tolm_ipc_key_converter.cpp").read_text()
    built_in = re.search(r'#ifdef __ANDROID__\nconstexpr char kBuiltInDirectory\[\] = "([^"]+)"', code).group(1)
    rc = (SERVICE.parent / f"{SERVICE.name}.rc").read_text()
    program = f"/vendor/bin/hw/{SERVICE.name}"
    for line in (f"    mkdir {built_in} 01770 system system", f"service vendor.hbbtv-1-0 {program} {built_in}"):
        if line not in rc.splitlines():
            raise Problem(f"{SERVICE.name}.rc lacks the line: {line}")
    contexts = (ROOT / "device" / "sepolicy" / "file_contexts").read_text()
    for path, kind in ((program, "hal_hbbtv_default_exec"), (f"{built_in}/x", "hbbtv_socket"),
                       (built_in, "hbbtv_socket")):
        if not any(re.fullmatch(pattern, path) and context == f"u:object_r:{kind}:s0"
                   for pattern, context in map(str.split, contexts.splitlines())):
            raise Problem(f"file_contexts does not label {path} as {kind}")


def check_hashes():
    frozen = dict(line.split()[::-1] for line in (ROOT / "current.txt").read_text().splitlines()
                  if line and not line.startswith("#"))
    must_be_same("the .hal files and the interfaces of current.txt",
                 sorted(f"{NAME}::{path.stem}" for path in PACKAGE.glob("*.hal")), sorted(frozen))


CHECKS = [("sources", check_sources), ("fuzz targets", check_fuzz_targets), ("interfaces", check_interfaces),
          ("directory", check_directory), ("released interfaces", check_hashes)]
