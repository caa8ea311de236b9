#!/usr/bin/env python3
"""Generates the description of the HIDL package as data, and the C++ bindings that call it.

    generate.py --vts DIR --headers DIR --protocol DIR --out DIR

Names and types come from the .vts files of hidl-gen, documentation and exact signatures from its headers, and which
strings are bytes from the wire protocol. The output
is description.cpp (one JSON string), struct_conversions.{h,cpp}, a bindings_<Interface>.cpp per interface, and an
<Interface>Listener.h for each interface that clients implement.
"""

import argparse
import json
import pathlib
import re

TOKEN = re.compile(r'\s*(?:([A-Za-z_]\w*)\s*(?::\s*(\{)|:\s*("(?:[^"\\]|\\.)*"|[^\s{}]+))|(\}))')


def parse_vts(text):
    """Parses the text format of a protocol buffer. Returns each name with the list of its values."""
    stack = [{}]
    position = 0
    while match := TOKEN.match(text, position):
        position = match.end()
        name, opens, value, closes = match.groups()
        if closes:
            stack.pop()
        elif opens:
            inner = {}
            stack[-1].setdefault(name, []).append(inner)
            stack.append(inner)
        else:
            stack[-1].setdefault(name, []).append(value.strip('"'))
    if text[position:].strip() or len(stack) != 1:
        raise ValueError("cannot parse: " + text[position:position + 60])
    return stack[0]


def short(name):
    return name.rsplit("::", 1)[-1]


def type_of(variable):
    kind = variable["type"][0]
    if kind == "TYPE_SCALAR":
        return {"bool_t": "bool", "float_t": "float", "double_t": "double"}.get(
            variable["scalar_type"][0], variable["scalar_type"][0])
    if kind == "TYPE_STRING":
        return "string"
    if kind == "TYPE_VECTOR":
        return "vec<" + type_of(variable["vector_value"][0]) + ">"
    if kind in ("TYPE_ENUM", "TYPE_STRUCT", "TYPE_HIDL_CALLBACK", "TYPE_HIDL_INTERFACE"):
        return short(variable["predefined_type"][0])
    raise ValueError("unsupported type: " + kind)


def parameters(variables):
    return [{"name": v["name"][0], "type": type_of(v)} for v in variables]


COMMENT = r"/\*\*((?:(?!\*/).)*)\*/\s*"


def plain(comment):
    lines = [re.sub(r"^\s*\* ?", "", line).rstrip() for line in comment.strip().split("\n")]
    return "\n".join(lines).strip()


def doc_before(header, what):
    found = re.search(COMMENT + what, header, re.DOTALL)
    return plain(found.group(1)) if found else ""


def describe_types(vts, header):
    types = {}
    for attribute in vts.get("attribute", []):
        name = short(attribute["name"][0])
        doc = doc_before(header, r"(?:struct|enum class) " + name + r"\b[^;]*?\{")
        if attribute["type"][0] == "TYPE_STRUCT":
            types[name] = {"kind": "struct", "doc": doc, "fields": parameters(attribute["struct_value"])}
            continue
        values = attribute["enum_value"][0]
        body = re.search(r"enum class " + name + r" : \w+ \{(.*?)\n\};", header, re.DOTALL).group(1)
        enumerators = []
        for enumerator, scalar in zip(values.get("enumerator", []), values.get("scalar_value", [])):
            value = int(next(iter(scalar.values()))[0])
            enumerators.append({"name": enumerator, "value": value,
                                "doc": doc_before(body, enumerator + r" = ")})
        types[name] = {"kind": "enum", "doc": doc, "of": values["scalar_type"][0], "enumerators": enumerators}
    return types


def strings_of_bytes(protocol):
    """Returns interface, method and result of what a .hal file calls a string, but is a list of numbers on the wire."""
    strings = set()
    for path in protocol.glob("*.json"):
        interface = "i" + path.stem.replace("_", "")
        for operation in json.loads(path.read_text())["operations"]:
            method = operation.get("method", operation["name"])
            strings |= {(interface, method, member.get("out")) for member in operation["reply"] if "repeat" in member}
    return strings


def mark_bytes(interface, strings):
    for method in interface["methods"]:
        for result in method["results"]:
            is_string = result["type"] == "string"
            if is_string and (interface["name"].lower(), method["name"], result["name"]) in strings:
                result["bytes"] = True


def describe_interface(vts, header):
    name = vts["component_name"][0]
    methods = []
    for api in vts["interface"][0].get("api", []):
        method = api["name"][0]
        methods.append({
            "name": method,
            "doc": doc_before(header, r"virtual [^;]*? " + method + r"\("),
            "arguments": parameters(api.get("arg", [])),
            "results": parameters(api.get("return_type_hidl", [])),
        })
    return {"name": name, "doc": doc_before(header, r"struct " + name + r" :"), "methods": methods}


def signature(header, method):
    """Returns the declaration in the header, without `virtual`."""
    found = re.search(r"virtual ([^;]*? " + method + r"\([^;]*\)) = 0;", header)
    return found.group(1)


def argument_names(interface_method):
    return [argument["name"] for argument in interface_method["arguments"]]


def listener(interface, header):
    """Returns the class of a callback object that passes every call to a sink."""
    name = interface["name"]
    lines = [f"class {name}Listener : public {name} {{", "  public:",
             f"    explicit {name}Listener(EventSink& sink) : mSink(sink) {{}}", ""]
    for method in interface["methods"]:
        values = "".join(", " + argument for argument in argument_names(method))
        declaration = signature(header, method["name"])
        returned = re.match(r"::android::hardware::Return<(.*?)> ", declaration).group(1)
        call = f'mSink.Take("{name}", "{method["name"]}", Values({values[2:]}))'
        lines.append(f"    {declaration} override {{")
        answer = "AnswerTo(_hidl_cb, " if "_hidl_cb" in declaration else f"AnswerWith<{returned}>("
        lines.append(f"        return {answer}{call});")
        lines.append("    }")
    lines += ["", "  private:", "    EventSink& mSink;", "};", "", "template <>", f"struct ListenerClass<{name}> {{",
              f"    using Type = {name}Listener;", "};"]
    return lines


def struct_conversions(name, struct):
    to = [f"Json::Value ToJson(const {name}& value) {{", "    Json::Value json(Json::objectValue);"]
    to += [f'    json["{field["name"]}"] = ToJson(value.{field["name"]});' for field in struct["fields"]]
    to += ["    return json;", "}"]
    back = ["template <>", f"{name} FromJson<{name}>(const Json::Value& json) {{", f"    {name} value{{}};"]
    back += [f'    value.{f["name"]} = FromJson<decltype(value.{f["name"]})>(json["{f["name"]}"]);'
             for f in struct["fields"]]
    back += ["    return value;", "}"]
    return to + [""] + back + [""]


def write(path, lines):
    path.write_text("\n".join(["// Generated by package/generate.py."] + lines) + "\n")


def write_types(out, namespace, includes, types):
    structs = {name: t for name, t in types.items() if t["kind"] == "struct"}
    header = ["#pragma once", f"#include <{includes}/types.h>", "#include <json/value.h>", "",
              "namespace hbbtv {", f"using namespace ::{namespace};",
              "template <typename T>", "T FromJson(const Json::Value& json);"]
    source = ['#include "package/bindings.h"', "", "namespace hbbtv {"]
    for name, struct in structs.items():
        header += [f"Json::Value ToJson(const {name}& value);", "template <>",
                   f"{name} FromJson<{name}>(const Json::Value& json);"]
        source += struct_conversions(name, struct)
    write(out / "struct_conversions.h", header + ["}  // namespace hbbtv"])
    write(out / "struct_conversions.cpp", source + ["}  // namespace hbbtv"])


def write_bindings(out, includes, interface, header, is_callback):
    name = interface["name"]
    lines = ['#include "package/bindings.h"', f"#include <{includes}/{name}.h>", "", "namespace hbbtv {"]
    if is_callback:
        write(out / f"{name}Listener.h", ["#pragma once", *lines, *listener(interface, header), "}  // namespace hbbtv"])
        lines = [f'#include "{name}Listener.h"', "", "namespace hbbtv {", "template <>",
                 f"android::sp<{name}> MakeListener<{name}>(EventSink& sink) {{",
                  f"    return new {name}Listener(sink);", "}"]
    else:
        used = {a["type"] for m in interface["methods"] for a in m["arguments"] if re.match(r"I[A-Z]", a["type"])}
        for callback in sorted(used):
            lines += ["template <>", f"android::sp<{callback}> MakeListener<{callback}>(EventSink& sink);"]
        lines += [f"extern const InterfaceBinding k{name}Binding;",
                  f"const InterfaceBinding k{name}Binding{{", f"    {name}::descriptor, &Find<{name}>, {{"]
        lines += [f'        {{"{m["name"]}", &Invoke<&{name}::{m["name"]}>}},' for m in interface["methods"]]
        lines += ["    }};"]
    write(out / f"bindings_{name}.cpp", lines + ["}  // namespace hbbtv"])


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    for name in ("vts", "headers", "protocol", "out"):
        parser.add_argument("--" + name, type=pathlib.Path, required=True)
    options = parser.parse_args()
    options.out.mkdir(parents=True, exist_ok=True)

    types_vts = parse_vts((options.vts / "types.vts").read_text())
    package = types_vts["package"][0]
    version = types_vts["component_type_version_major"][0] + "." + types_vts["component_type_version_minor"][0]
    namespace = package.replace(".", "::") + "::V" + version.replace(".", "_")
    includes = package.replace(".", "/") + "/" + version
    types = describe_types(types_vts, (options.headers / "types.h").read_text())
    write_types(options.out, namespace, includes, types)

    interfaces = []
    headers = {}
    strings = strings_of_bytes(options.protocol)
    for path in sorted(options.vts.glob("*.vts")):
        if path.name == "types.vts":
            continue
        header = (options.headers / f"I{path.stem}.h").read_text()
        interface = describe_interface(parse_vts(path.read_text()), header)
        mark_bytes(interface, strings)
        interfaces.append(interface)
        headers[interface["name"]] = header
    callbacks = {argument["type"] for interface in interfaces for method in interface["methods"]
                 for argument in method["arguments"] if argument["type"] in headers}
    for interface in interfaces:
        interface["callback"] = interface["name"] in callbacks
        write_bindings(options.out, includes, interface, headers[interface["name"]], interface["callback"])

    services = [interface["name"] for interface in interfaces if not interface["callback"]]
    write(options.out / "bindings_all.cpp",
          ['#include "package/bindings.h"', "", "namespace hbbtv {"]
          + [f"extern const InterfaceBinding k{name}Binding;" for name in services]
          + ["const std::map<std::string, const InterfaceBinding*>& AllBindings() {",
             "    static const std::map<std::string, const InterfaceBinding*> all{"]
          + [f'        {{"{name}", &k{name}Binding}},' for name in services]
          + ["    };", "    return all;", "}", "}  // namespace hbbtv"])

    description = {"package": f"{package}@{version}", "interfaces": interfaces,
                   "types": [{"name": name, **t} for name, t in types.items()]}
    text = json.dumps(description, ensure_ascii=False, separators=(",", ":"))
    # Compilers limit the length of a literal, so split the text.
    pieces = [text[i:i + 8000] for i in range(0, len(text), 8000)]
    write(options.out / "description.cpp",
          ['#include "package/description.h"', "", "namespace hbbtv {", "const char* const kDescription ="]
          + [f'    R"~({piece})~"' for piece in pieces] + ["    ;", "}  // namespace hbbtv"])


if __name__ == "__main__":
    main()
