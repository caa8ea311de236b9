"""The SELinux policy with a small base policy: it compiles, it allows what service, platform and client need and
nothing more, and it refuses wrong rules."""

from .common import ROOT, Problem, must, run

SEPOLICY = ROOT / "device" / "sepolicy"
BASE = ROOT / "device" / "check" / "policy"

STRANGERS = ["untrusted_app", "isolated_app", "ephemeral_app", "priv_app", "system_app", "shell"]

# Domain, target, class and permission that the service, the platform and the client need.
NEEDED = [
    ("hal_hbbtv_default", "hal_hbbtv_hwservice", "hwservice_manager", "add"),
    ("hal_hbbtv_default", "hbbtv_socket", "dir", "add_name"),
    ("hal_hbbtv_default", "hbbtv_socket", "sock_file", "create"),
    ("hal_hbbtv_default", "hbbtv_socket", "sock_file", "setattr"),
    ("hal_hbbtv_default", "hbbtv_socket", "sock_file", "unlink"),
    ("hal_hbbtv_default", "hbbtv_socket", "sock_file", "write"),
    ("hal_hbbtv_default", "tv_platform", "unix_stream_socket", "connectto"),
    ("hal_hbbtv_default", "platform_app", "binder", "call"),
    ("tv_platform", "hbbtv_socket", "dir", "add_name"),
    ("tv_platform", "hbbtv_socket", "sock_file", "create"),
    ("tv_platform", "hal_hbbtv_default", "unix_stream_socket", "connectto"),
    ("platform_app", "hal_hbbtv_hwservice", "hwservice_manager", "find"),
    ("platform_app", "hal_hbbtv_default", "binder", "call"),
    ("vendor_init", "hbbtv_socket", "dir", "create"),
    ("init", "hal_hbbtv_default", "process", "transition"),
]

# A stranger must have no rule at all for these.
FORBIDDEN = [("hbbtv_socket", "dir"), ("hbbtv_socket", "sock_file"), ("hal_hbbtv_default", "unix_stream_socket"),
             ("tv_platform", "unix_stream_socket"), ("hal_hbbtv_hwservice", "hwservice_manager"),
             ("hal_hbbtv_default", "binder")]

WRONG_RULES = [
    "allow untrusted_app hal_hbbtv_default:unix_stream_socket connectto;",
    "allow platform_app hbbtv_socket:sock_file write;",
    "allow shell hbbtv_socket:dir { open read };",
    "allow priv_app hal_hbbtv_hwservice:hwservice_manager find;",
    "allow tv_platform hal_hbbtv_hwservice:hwservice_manager add;",
    "typeattribute system_server hbbtv_platform;",
]


def compiled(work, more=""):
    """Returns the exit code and the output of the compiler, and the binary policy."""
    parts = [BASE / "macros.m4", BASE / "base.te", SEPOLICY / "attributes", *sorted(SEPOLICY.glob("*.te")),
             BASE / "tv_platform.te", BASE / "client.te"]
    text = "".join(part.read_text() for part in parts) + more + "\n" + (BASE / "end.te").read_text()
    (work / "policy.conf").write_text(must(["m4"], text=text))
    binary = work / "policy.bin"
    code, output = run(["checkpolicy", "-M", "-c", "30", "-o", str(binary), str(work / "policy.conf")])
    return code, output, binary


def opened(binary):
    """The policy for questions. sesearch would take half a second for each."""
    import setools  # installed by scripts/check-device
    return setools, setools.SELinuxPolicy(str(binary))


def rules(policy, source, target, kind, permission=None):
    setools, loaded = policy
    permissions = {"perms": [permission]} if permission else {}
    return [str(rule) for rule in setools.TERuleQuery(loaded, ruletype=["allow"], source=source, target=target,
                                                      tclass=[kind], **permissions).results()]


def check_policy(work):
    code, output, binary = compiled(work)
    if code != 0:
        raise Problem(f"the policy does not compile\n{output}")
    policy = opened(binary)
    for source, target, kind, permission in NEEDED:
        if not rules(policy, source, target, kind, permission):
            raise Problem(f"{source} has no {permission} for {target}:{kind}")
    for source in STRANGERS:
        for target, kind in FORBIDDEN:
            found = rules(policy, source, target, kind)
            if found:
                raise Problem(f"{source} has a rule for {target}:{kind}: {found}")


def check_contexts(work):
    _, _, binary = compiled(work)
    contexts = SEPOLICY / "file_contexts"
    must(["/usr/sbin/sefcontext_compile", "-p", str(binary), "-o", str(work / "file_contexts.bin"), str(contexts)])
    _, policy = opened(binary)
    if "hal_hbbtv_hwservice" not in [str(each) for each in policy.types()]:
        raise Problem("hwservice_contexts names a type that the policy lacks")


def check_wrong_rules(work):
    for rule in WRONG_RULES:
        code, output, _ = compiled(work, rule)
        if code == 0 or "neverallow" not in output:
            raise Problem(f"the policy does not refuse: {rule}\n{output}")


CHECKS = [("policy", check_policy), ("contexts", check_contexts), ("wrong rules", check_wrong_rules)]
