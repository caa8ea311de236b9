"""hidl-gen, bpfmt and xmllint on the files of a product's tree."""

from .common import LIBRARY, NAME, PACKAGE, ROOT, Problem, must, run

HIDL_GEN = ["hidl-gen", "-p", ".", "-R", "-r", "vantorel.hardware:.", "-r", "android.hidl:host/hal"]
BLUEPRINTS = [ROOT / "Android.bp", PACKAGE / "Android.bp", LIBRARY / "Android.bp",
              ROOT / "fuzz" / "Android.bp", PACKAGE / "vts" / "functional" / "Android.bp"]


def check_hidl(work):
    must([*HIDL_GEN, "-L", "check", NAME])
    frozen = (ROOT / "current.txt").read_text()
    for line in must([*HIDL_GEN, "-L", "hash", NAME]).splitlines():
        if line not in frozen.splitlines():
            raise Problem(f"current.txt lacks the line: {line}")
    must([*HIDL_GEN, "-L", "androidbp", "-o", str(work / "hidl"), NAME])
    generated = work / "hidl" / "hbbtv" / "1.0" / "Android.bp"
    if generated.read_text() != (PACKAGE / "Android.bp").read_text():
        raise Problem(f"hbbtv/1.0/Android.bp is not what hidl-gen generates: {generated}")


def check_frozen(work):
    """hidl-gen refuses a released interface that has changed."""
    copy = work / "changed"
    must(["rm", "-rf", str(copy)])
    for part in ("hbbtv/1.0", "host/hal"):
        (copy / part).mkdir(parents=True)
        must(["cp", "-r", f"{part}/.", str(copy / part)])
    must(["cp", "current.txt", str(copy)])
    with (copy / "hbbtv" / "1.0" / "IChannel.hal").open("a") as hal:
        hal.write("// changed\n")
    code, output = run([*HIDL_GEN, "-L", "check", NAME], copy)
    if code == 0 or "does not match hash on record" not in output:
        raise Problem(f"hidl-gen accepts a released interface that has changed\n{output}")


def check_format(_):
    for path in BLUEPRINTS:
        if path.parent == PACKAGE:  # what hidl-gen generates has an empty line at its end
            continue
        difference = must(["bpfmt", "-d", str(path)])
        if difference:
            raise Problem(f"{path} is not formatted; run bpfmt -w on it\n{difference}")


def check_xml(_):
    schema = ROOT / "device" / "check" / "vintf.rng"
    for path in (LIBRARY / f"{NAME}-service.xml", ROOT / "device" / "compatibility_matrix.xml"):
        must(["xmllint", "--noout", "--relaxng", str(schema), str(path)])
        wrong = path.read_text().replace("<instance>default</instance>", "<instances>default</instances>", 1)
        code, _output = run(["xmllint", "--noout", "--relaxng", str(schema), "-"], text=wrong)
        if code == 0:
            raise Problem(f"the schema accepts a wrong element in {path}")


CHECKS = [("hidl-gen", check_hidl), ("frozen", check_frozen), ("bpfmt", check_format), ("XML", check_xml)]
