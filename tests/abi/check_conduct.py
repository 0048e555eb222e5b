#!/usr/bin/env python3
"""Looks for what a library that is embedded must not do, in what it calls and in what it keeps.

usage: check_conduct.py LIBRARY [OBJECT...]

No output of its own, no end of the process, no thread; and no variable that outlives a call, but for the logger and for
constants that are made when they are first used. For release builds: others check assertions.

With objects, what they call counts instead of what the library does. A solver that is part of it has functions that
read files and print, which are not called.
"""

import re
import subprocess
import sys

FORBIDDEN = re.compile(
    r"\b(abort|_?exit|quick_exit|__assert_fail|v?f?d?printf|f?puts|fput[cs]|putchar|perror|fwrite|write|"
    r"std::c(out|err|log)|std::thread::_M_start_thread|pthread_create|fork|v?fork|system|popen)(@|\(|$)")

KEPT = {
    "tarn::evolution::diagnostics::logger",
    "handle",             # of the instrumentation event
    "emptyVersionRange",  # constants from here on
    "none",
    "schema",
}


def lines_of(*command):
    environment = {"LC_ALL": "C", "PATH": "/usr/bin:/bin"}
    return subprocess.run(
        command, check=True, capture_output=True, text=True, env=environment).stdout.splitlines()


def called(library, objects):
    for binary in objects or [library]:
        for line in lines_of("nm", *([] if objects else ["--dynamic"]), "--undefined-only", "--demangle", binary):
            name = line.split(maxsplit=1)[1]
            if FORBIDDEN.match(name):
                yield f"{binary} calls {name}"


def kept(library):
    for line in lines_of("objdump", "--syms", "--demangle", library):
        # ADDRESS FLAGS SECTION SIZE [.hidden] NAME
        variable = re.match(r"[0-9a-f]+ .{6}O (\.t?bss|\.t?data)\t[0-9a-f]+ +(?:\.hidden )?(.*)", line)
        if not variable or "tarn" not in variable[2] or variable[2].startswith(("guard variable for", "DW.ref.")):
            continue
        name = variable[2]
        if name not in KEPT and name.rsplit("::", 1)[-1] not in KEPT:
            yield f"{library} keeps {name}"


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    faults = [*called(sys.argv[1], sys.argv[2:]), *kept(sys.argv[1])]
    print("\n".join(faults) or "Nothing that it must not do.")
    sys.exit(bool(faults))
