"""What the library takes from the C library, liblog, libutils and libhidlbase, against what Android 10 has of them:
device/check/imports.txt. A name that is new there is to be looked up first."""

import pathlib
import re
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))

from check.common import ROOT  # noqa: E402

KEPT = ROOT / "device" / "check" / "imports.txt"

# What compilers and glibc put into every program, among it the arithmetic of 64 bits on processors of 32. Weak symbols
# and those of C++ and jsoncpp do not count either.
OWN = re.compile(r"_ITM_|_Unwind_|__cxa_|__gmon_start__|__gxx_personality|__libc_|___?tls_get_addr|__stack_chk_fail|"
                 r"__dso_handle|_GLOBAL_OFFSET_TABLE_|__errno_location|__aeabi_|__u?(div|mod|divmod)di[34]|"
                 r"std::|operator (new|delete)|Json::|"
                 r"(typeinfo|vtable|VTT|guard variable|construction vtable) |vantorel::|tolm::|Tolm|__cxxabiv1|"
                 r"__gnu_cxx|non-virtual thunk|virtual thunk|HIDL_FETCH_")

# What only a build with glibc and libstdc++ imports: the code that asks for it is not compiled for Android, or is
# libstdc++'s own.
GLIBC_ONLY = {"malloc_trim", "mallopt", "pthread_cond_clockwait", "pthread_mutex_clocklock"}


def imports(objects):
    """The names without glibc's spellings: __isoc99_sscanf is sscanf, __printf_chk is printf, stat64 is stat."""
    listed = subprocess.run(["nm", "-C", "--format=posix", *objects], check=True, capture_output=True, text=True).stdout
    symbols = [found.groups() for found in re.finditer(r"^(.*) ([A-Za-z])(?: [0-9a-f]+)*\s*$", listed, re.MULTILINE)]
    defined = {name for name, kind in symbols if kind != "U"}
    for name in {name for name, kind in symbols if kind == "U"} - defined:
        name = re.sub(r"^__(isoc99|isoc23)_", "", name)
        name = re.sub(r"^__(\w+)_chk$", r"\1", name)
        name = re.sub(r"\[abi:\w+\]|\(.*", "", name)
        name = re.sub(r"^(f?stat|lstat|getrlimit|setrlimit|fcntl|open|lseek)64$", r"\1", name)
        if not OWN.match(name) and name not in GLIBC_ONLY and " std::" not in name:
            yield name


def main():
    kept = {line for line in KEPT.read_text().splitlines() if line and not line.startswith("#")}
    used = set(imports(sys.argv[1:]))
    if not used:
        print("no imports found")
        return 1
    for name in sorted(used - kept):
        print(f"{name}: does Android 10 have it? Then add it to {KEPT.relative_to(ROOT)}")
    return 1 if used - kept else 0


if __name__ == "__main__":
    sys.exit(main())
