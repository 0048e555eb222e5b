#!/usr/bin/env python3
"""Looks for what a library that is embedded must not do, in what it calls and in what it keeps.

usage: check_conduct.py [--threads] LIBRARY [OBJECT...]

No output of its own, no end of the process, no thread, unless the host can ask for some ("--threads"); and no variable that outlives a call, but for the logger and for
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


THREAD = re.compile(r"std::thread::_M_start_thread")


def called(library, objects, may_start_threads):
    for binary in objects or [library]:
        for line in lines_of("nm", *([] if objects else ["--dynamic"]), "--undefined-only", "--demangle", binary):
            name = line.split(maxsplit=1)[1]
            if FORBIDDEN.match(name) and not (may_start_threads and THREAD.match(name)):
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
    may_start_threads = "--threads" in sys.argv[1:2]
    arguments = sys.argv[2 if may_start_threads else 1:]
    if not arguments:
        sys.exit(__doc__)
    faults = [*called(arguments[0], arguments[1:], may_start_threads), *kept(arguments[0])]
    print("\n".join(faults) or "Nothing that it must not do.")
    sys.exit(bool(faults))
